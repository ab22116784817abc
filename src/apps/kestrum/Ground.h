// The ports that every command needs, with or without a screen: files, processes, folders, settings, trace.
#pragma once

#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/LinuxProcesses.h"
#include "adapters/linux/LinuxShellFolders.h"
#include "adapters/linux/SqliteSettings.h"
#include "adapters/linux/TraceLog.h"
#include "host/Host.h"

namespace kestrum::app {

struct Ground {
    platform::TraceLog trace;
    platform::LinuxFileSystem fs;
    platform::LinuxProcesses processes;
    platform::LinuxShellFolders shell;
    platform::SqliteSettings settings{platform::SqliteSettings::DefaultFile(), trace};
    host::IFmtConvert fmtConvert;
    host::IKsEditorControl ksEditorControl;
    host::IScip2 scip2;
};

/// The folder of this program: what lies in it belongs to the product.
String InstallFolder();

/// `path` as a full path, from the current folder.
String FullPath(const std::string& path);

}  // namespace kestrum::app
