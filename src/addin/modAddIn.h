// What the session finds or makes before the first command: temp and data folders, the template project.
#pragma once

#include "addin/Context.h"

namespace kestrum::modAddIn {

/// Sets the system version and g_AppDataFolder, makes the temp folder and "Larkspin" below the data folder, loads the
/// template project, clears the recording flags. A folder that cannot be made is skipped.
void InitFolders(const addin::Context& c);

/// Loads `default.ksp` of the install folder into g_DefaultProjectDoc unless that was done. False if it could not be;
/// nothing is reported.
bool LoadDefaultProjectXml(const addin::Context& c);

}  // namespace kestrum::modAddIn
