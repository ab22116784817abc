// `kestrum info`: what a package holds, without changing it and without opening a project.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"
#include "host/IPackageInspector.h"
#include "support/Context.h"

namespace kestrum::app {

/// Prints the description; the exit code.
int RunInfo(const support::Context& c, host::IPackageInspector& inspector, Console& console,
            const InfoRequest& request);

}  // namespace kestrum::app
