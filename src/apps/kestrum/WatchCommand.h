// `kestrum watch`: a deck open in Impress for its user, each slide show of it recorded.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Runs the command on the screen of this session until the deck or the office is closed, or a signal comes (a
/// recording is ended first); the exit code. Throws host::Error with a sentence for the user.
int RunWatch(Console& console, const WatchRequest& request);

}  // namespace kestrum::app
