// How a script talks to its user: the two operations that it needs, whatever shows them.
#pragma once

#include <optional>

#include "host/String.h"

namespace kestrum {

class IScriptDialogs {
  public:
    enum class Icon { Information, Exclamation };

    virtual ~IScriptDialogs() = default;
    /// Shows a message and waits until it was read (re-enters).
    virtual void ShowMessage(const String& message, const String& caption, Icon icon) = 0;
    /// Asks for a line of text (re-enters); none if the user cancels.
    virtual std::optional<String> AskLine(const String& prompt, const String& caption, const String& preset) = 0;
};

}  // namespace kestrum
