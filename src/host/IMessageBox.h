// The platform's own message box.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum::host {

enum class BoxButtons : std::int32_t { Ok = 0, OkCancel = 1, YesNoCancel = 3, YesNo = 4, RetryCancel = 5 };

/// What the caller does next is the answer's name; the numbers are the platform's.
enum class BoxAnswer : std::int32_t { Ok = 1, Cancel = 2, Retry = 4, Yes = 6, No = 7 };

class IMessageBox {
  public:
    virtual ~IMessageBox() = default;
    /// Shows a box and waits for the answer (re-enters). An empty `title` is the application's title.
    virtual BoxAnswer Show(const String& text, BoxButtons buttons, const String& title) = 0;
};

}  // namespace kestrum::host
