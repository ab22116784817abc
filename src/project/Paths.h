// Where the files of a project and of the install folder lie. Names come from outside (a package may be anybody's), so
// only the last component of a stored name counts: nothing outside the scratch folder is touched.
#pragma once

#include "host/IKsLib.h"
#include "project/Context.h"

namespace kestrum::project {

/// A file of the scratch folder.
String InWorkFolder(const support::Context& c, StringView name);
/// A file or folder of the install folder, two levels down at most.
String InInstallFolder(const support::Context& c, StringView name);
String InInstallFolder(const support::Context& c, StringView folder, StringView name);
/// The default cursor image, template/default/icons/cursor.gif of the install folder.
String DefaultCursor(const support::Context& c);
/// The cursor image as the player has it, icons/cursor.gif of the scratch folder.
String PlayerCursor(const support::Context& c);
/// The last component of a name from outside, `fallback` if that names no file.
String OwnName(const support::Context& c, StringView name, StringView fallback);
/// The presenter's photo in the scratch folder, under the name that the project gives it.
String PhotoName(const Context& c);
String PhotoFile(const Context& c);
/// The folder that exists while a recording runs, and the snapshot of the project file in it.
String RecordingFolder(const support::Context& c);
String Snapshot(const support::Context& c);
/// The package and the stored files as the media library is given them.
String NarrowPackage(const support::Context& c);
host::StoredFiles NarrowPaths(const support::Context& c, const host::StoredFiles& files);

}  // namespace kestrum::project
