// Failures of system calls as the house's one exception.
#pragma once

#include "host/Error.h"

namespace kestrum::platform {

/// Throws host::Error for the system's code `code` (an errno value): the number that fits, and one sentence that names
/// `subject` (a path or program) and the system's reason.
[[noreturn]] void ThrowSystemError(int code, const String& source, const String& subject);

}  // namespace kestrum::platform
