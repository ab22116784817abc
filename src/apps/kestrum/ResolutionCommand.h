// `kestrum resolution`: the dialog that changes the display mode of the default monitor.
#pragma once

#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Shows the dialog until its user leaves it; the exit code. What was picked stays in force. Throws host::Error with a
/// sentence for the user.
int RunResolution(Console& console);

}  // namespace kestrum::app
