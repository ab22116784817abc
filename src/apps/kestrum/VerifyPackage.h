// `kestrum verify` on the real package: Ctrl-C ends the look at it, before anything is changed.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Verifies and prints; the exit code. Throws host::Error with a sentence for the user.
int VerifyPackage(Console& console, const VerifyRequest& request);

}  // namespace kestrum::app
