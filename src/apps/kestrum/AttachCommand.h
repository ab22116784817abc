// `kestrum attach`: the recorder of an Impress that its user has started. It serves the menu, records the shows that
// are started by it or, if that is switched on, by hand, and goes when the office goes.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Runs the command on the screen of this session until the office has ended or a signal comes (a recording is ended
/// first); the exit code. Throws host::Error with a sentence for the user.
int RunAttach(Console& console, const AttachRequest& request);

}  // namespace kestrum::app
