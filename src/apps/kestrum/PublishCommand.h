// `kestrum publish`: the publish dialog run by itself, without a screen, on the package of a deck or on a package.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Publishes one package after the other and prints "page: PATH" or the failure of each; the exit code: 0 if all were
/// published, 1 if one was not, 128 and the signal that ended it.
int RunPublish(Console& console, const PublishRequest& request);

}  // namespace kestrum::app
