// `kestrum configure`, `kestrum devices` and `kestrum resolution`: the dialogs of settings on the desktop, with or
// without a lecture.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Each shows its dialog until the user leaves it, and gives the exit code. Throws host::Error with a sentence for the
/// user.
int RunConfigure(Console& console, const ConfigureRequest& request);
int RunDevices(Console& console, const DevicesRequest& request);
/// For the default monitor; what was picked stays in force.
int RunResolution(Console& console);

}  // namespace kestrum::app
