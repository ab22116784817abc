// The JSON reader and writer, and the script on top of them: every text ends, and what was read cleanly is written as a
// text that reads back equal.
#include "Fuzz.h"
#include "host/Error.h"
#include "support/cJSONScript.h"

using namespace kestrum;

namespace {

bool Equal(const Value& a, const Value& b);

bool Equal(Dictionary& a, Dictionary& b) {
    if (a.keys() != b.keys()) return false;
    for (const String& key : a.keys())
        if (!Equal(a.item(key), b.item(key))) return false;
    return true;
}

bool Equal(Collection& a, Collection& b) {
    if (a.Count() != b.Count()) return false;
    for (std::int32_t i = 1; i <= a.Count(); ++i)
        if (!Equal(a.Item(i), b.Item(i))) return false;
    return true;
}

bool Equal(const Value& a, const Value& b) {
    using DictionaryRef = std::shared_ptr<Dictionary>;
    using CollectionRef = std::shared_ptr<Collection>;
    if (a.index() != b.index()) return false;
    if (const auto* object = std::get_if<DictionaryRef>(&a)) return Equal(**object, *std::get<DictionaryRef>(b));
    if (const auto* list = std::get_if<CollectionRef>(&a)) return Equal(**list, *std::get<CollectionRef>(b));
    return JSON::ToJsonText(a) == JSON::ToJsonText(b);
}

/// Answers each question with its preset.
class Dialogs : public IScriptDialogs {
  public:
    void ShowMessage(const String&, const String&, Icon) override {}
    std::optional<String> AskLine(const String&, const String&, const String& preset) override { return preset; }
};

void Run(support::State& state, const String& script) {
    Dialogs dialogs;
    try {
        cJSONScript(state, dialogs).Eval(script);
    } catch (const host::Error&) {  // a script that is none fails its run
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String text = fuzz::Text(fuzz::Bytes(data, size));
    support::State state;
    const Value value = JSON::ParseJson(state, text);
    const String written = JSON::ToJsonText(value);
    fuzz::Require(written.size() <= 8 * text.size() + 8, "what was read is not much longer when it is written");
    if (!JSON::GetJsonErrors(state).empty()) return 0;
    const Value again = JSON::ParseJson(state, written);
    fuzz::Require(JSON::GetJsonErrors(state).empty(), "what the writer writes of a clean text reads cleanly");
    fuzz::Require(Equal(value, again), "what the writer writes reads back equal");
    Run(state, text);
    return 0;
}
