// Everything that can be said about a package without changing it: whether it can be looked into at all, what is wrong
// with the file, and what with the index in it.
#pragma once

#include <optional>

#include "apps/commandline/IndexCheck.h"

namespace kestrum::app {

struct Diagnosis {
    host::PackageInspection file;
    /// Why the package is left alone, as one sentence; then nothing else was looked at.
    std::optional<String> refusal;
    std::vector<Finding> findings;
    std::int32_t entries = 0;
    IndexMend mend;
    bool readable = false;  ///< the project file could be read: the index can be mended
};

/// Looks at the package at `path`; with `everything` all of its media too (re-enters, see IPackageInspector).
/// Throws host::Error with a sentence if the scratch folder cannot be made.
Diagnosis Diagnose(const support::Context& c, host::IPackageInspector& inspector, const String& path, bool everything,
                   const std::function<void(std::int32_t)>& onPercent);

/// The one sentence about a file that is no package of this generation, or is encrypted; nullopt for one that can be
/// looked into.
std::optional<String> RefusalOf(const support::Context& c, const host::PackageInspection& file, const String& path);

/// Where the traces of a recording that runs, or died, lie.
String SnapshotOf(const support::Context& c, const String& package);
/// The project file that could not be stored.
String UnsavedCopyOf(const String& package);

}  // namespace kestrum::app
