// `kestrum configure` and `kestrum devices`: the dialogs of settings on the desktop, with or without a lecture.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Each shows its dialog until the user leaves it, and gives the exit code. Throws host::Error with a sentence for the
/// user.
int RunConfigure(Console& console, const ConfigureRequest& request);
int RunDevices(Console& console, const DevicesRequest& request);

}  // namespace kestrum::app
