// `kestrum publish`: the publish dialog run by itself, without a screen, on the package of a deck or on a package.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Publishes and prints "page: PATH"; the exit code. Throws host::Error with a sentence for the user.
int RunPublish(Console& console, const PublishRequest& request);

}  // namespace kestrum::app
