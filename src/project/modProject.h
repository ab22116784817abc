// The life of a project: which package belongs to the presentation, the scratch folder of a command, what an earlier
// crash left behind, and the one way back into the package.
#pragma once

#include "host/String.h"
#include "project/Context.h"

namespace kestrum::modProject {

/// Finds the package of the active presentation, offers to upgrade a legacy folder, and makes a new scratch folder:
/// sets packagePath, packageFolder, workFolder, projectFileName. False after telling why. Does nothing and answers
/// true for a project source other than "PPT". Strict; re-enters (boxes, converter window).
bool LocateProject(const project::Context& c);

/// Checks and unpacks the project into workFolder and loads g_Project. `isNew`: the package holds no media yet.
/// `continued` always comes back false. False after telling why; the caller then deletes workFolder (DeleteWorkFolder).
/// A statement that fails is skipped. Re-enters (boxes, verification).
bool OpenProject(const project::Context& c, bool isNew, bool& continued);

/// Saves g_Project and stores the four files of workFolder in the package. The only way by which a change reaches the
/// package. Never throws. If another program stored a project meanwhile, it tells so and stores nothing (re-enters,
/// box): entries of a recording must not go for an older list. Says nothing of a failure, for the next opening takes up
/// what is left beside the package; only if nothing can be left there, it tells that workFolder stays (box again).
void SaveProject(const project::Context& c);

/// Decides between save points and live files: tells of a broken import, and puts an editor's backup back.
void InitProject(const project::Context& c);

/// Lays the player files and the project's template over workFolder; the project's own photo and cursor win. Ends with
/// SaveProject. A statement that fails is skipped.
void ApplyTemplateFiles(const project::Context& c);

/// Deletes workFolder with all it holds, if it is set and exists, but not one that holds the only copy of an index
/// (folderToKeep of the state). The name stays.
void DeleteWorkFolder(const project::Context& c);

/// The same for the scratch folder of a command whose place in workFolder another command has taken meanwhile.
void DeleteWorkFolder(const project::Context& c, const String& folder);

/// Warns about a folder on a removable, network or CD drive. Always true. Re-enters.
bool WarnDriveType(const project::Context& c, const String& folder);

/// True after telling so if the external editor was at work within the last 9 seconds. Re-enters.
bool IsEditingElsewhere(const project::Context& c);

/// Attribute `ver` of the template project file: the program's own version; empty if unreadable.
String GetProgramVersion(const support::Context& c);

}  // namespace kestrum::modProject
