// The way between the scratch folder and the four files stored in the package. Decides what happens when storing fails:
// an index that exists in the scratch folder only would be deleted with it, so a copy is left beside the package
// (`<package>.unsaved`) until a later store succeeds, and comes first when the package is opened again.
#pragma once

#include "project/Context.h"

namespace kestrum::project {

/// The package exists and holds media (or cannot be read).
bool HoldsMedia(const support::Context& c);

/// Writes the stored files into the scratch folder. False if the package has no readable project file.
bool Unpack(const Context& c);

/// Another program has stored a project file since this one last read or stored one: a recording, or another window of
/// settings. False as long as that is not known for sure.
bool StoredByOther(const Context& c);

/// Stores the files of the scratch folder. A project file that was written but not yet put in its place counts as the
/// project file; without either, nothing is stored and the package keeps what it has. False if the project file now
/// exists in the scratch folder only. Never throws.
bool Pack(const Context& c);

/// First attribute of the root of a project file; empty on any failure.
String VersionOf(const support::Context& c, const String& file);

}  // namespace kestrum::project
