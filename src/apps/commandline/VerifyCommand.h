// `kestrum verify`: what is wrong with a package, entry by entry, and what --repair did about it.
#pragma once

#include <functional>

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"
#include "host/IPackageInspector.h"
#include "support/Context.h"

namespace kestrum::app {

/// Exit codes beside those of every command.
namespace verify_exit {
constexpr int kWhole = 0;
constexpr int kDamaged = 3;      ///< something is wrong, or is still wrong after --repair
constexpr int kRepaired = 4;     ///< everything that was wrong has been mended
constexpr int kNotLookedAt = 5;  ///< no package, not readable, of another generation, encrypted, being recorded
}  // namespace verify_exit

/// Looks, with --repair mends, and tells. Without --repair no byte of the package is changed. The exit code; -1 if
/// `isCancelled` answered true in between: then nothing was changed.
int RunVerify(const support::Context& c, host::IPackageInspector& inspector, Console& console,
              const VerifyRequest& request, const std::function<bool()>& isCancelled);

}  // namespace kestrum::app
