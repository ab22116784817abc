// Mends what can be mended in a package: what a recovery and the opening of a project mend, and before that what they
// would otherwise drop from the index. The package as it was is kept beside it.
#pragma once

#include <functional>

#include "apps/commandline/Diagnosis.h"
#include "project/Context.h"

namespace kestrum::app {

/// Something of what was found can be mended.
bool CanMend(const Diagnosis& diagnosis);

/// Copies the package (and a project file waiting beside it) to `<package>.before-repair`, or with the next free number
/// behind it; gives the copy's path. Throws host::Error with a sentence if that cannot be done; nothing is left then.
String KeepOriginal(const support::Context& c, const String& package);

/// Recovers, mends the index and opens the project at `package`, which stores it anew. Boxes are asked (re-enters).
/// Each entry of the intermediate state that was found wrong is added to `found`. Throws host::Error for a failure of
/// the system; the package is then as a later attempt can take it up.
void Mend(const project::Context& c, host::IPackageInspector& inspector, const String& package,
          std::vector<Finding>& found);

}  // namespace kestrum::app
