// A small command language written in JSON: a script is an array of texts and command objects, and evaluating it gives
// a text. An object's keys are commands in any letter case; one that is none becomes a macro text "<%NAME(values)%>".
// Failures of a script (a command's value that is no object, a switch without items, a name that is no text ...) are
// host::Error and reach the caller; a command that failed leaves the script's nesting level where it was.
#pragma once

#include "support/JSON.h"
#include "support/cJSONScriptDialogs.h"

namespace kestrum {

class cJSONScript {
  public:
    /// Both outlive the object. `state` holds what the last parse found wrong.
    cJSONScript(support::State& state, IScriptDialogs& dialogs) : m_state(state), m_dialogs(dialogs) {}
    cJSONScript(const cJSONScript&) = delete;
    cJSONScript& operator=(const cJSONScript&) = delete;

    /// The output of the script; empty, after a message, if it does not parse. May re-enter (dialogs). Variables live
    /// as long as the object.
    String Eval(StringView script);
    /// The output of one value of a parsed script. A value nested more than 40 levels deep has none.
    String ExecCommand(const Value& value);

  private:
    /// One key of an object as a command.
    struct Call {
        StringView key;
        /// The key's value if that is a text.
        String text;
        /// The last value of this or an earlier key that is an object; Empty if there was none.
        Value object;
    };
    struct Command {
        StringView name;
        String (cJSONScript::*run)(const Call&);
    };
    struct Output;

    String RunObject(Dictionary& object);
    String Run(const Call& call);
    String Evaluated(const Call& call, StringView name) { return ExecCommand(Argument(call, name)); }
    static Value Argument(const Call& call, StringView name);

    String Alert(const Call& call);
    String Input(const Call& call);
    String Switch(const Call& call);
    String Set(const Call& call);
    String Get(const Call& call);
    String If(const Call& call);
    String Return(const Call& call);
    static String Macro(const Call& call);

    support::State& m_state;
    IScriptDialogs& m_dialogs;
    Dictionary m_variables;
    std::int32_t m_level = 0;
};

}  // namespace kestrum
