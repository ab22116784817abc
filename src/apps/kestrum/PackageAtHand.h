// A package that a command works on by itself, without the presentation that it belongs to.
#pragma once

#include "host/IPackageInspector.h"
#include "project/Context.h"

namespace kestrum::app {

/// The package that the user means: the one named, or the one beside the deck named.
String PackageOf(const String& source);

/// Throws host::Error with a sentence unless `package` is a package of ours that nobody records or writes; waits
/// 2 s for one in use. `source` names the thrower.
void RefuseUnlessPackage(const support::Context& c, host::IPackageInspector& inspector, const String& package,
                         const String& source);

/// Sets the paths of the package as a hosting program does, and makes its scratch folder; the caller deletes that
/// (modProject::DeleteWorkFolder).
void TakePackage(const project::Context& c, const String& package);

}  // namespace kestrum::app
