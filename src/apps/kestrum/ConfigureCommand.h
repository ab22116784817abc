// `kestrum configure`: the dialog of preferences on the desktop, with or without a lecture.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Shows the dialog until its user leaves it; the exit code. Throws host::Error with a sentence for the user.
int RunConfigure(Console& console, const ConfigureRequest& request);

}  // namespace kestrum::app
