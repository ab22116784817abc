#include "addin/modAddIn.h"

#include "support/modGlobal.h"

namespace kestrum::modAddIn {

void InitFolders(const addin::Context& c) {
    host::IFileSystem& fs = c.host.fs;
    c.support.g_OsVersion = modGlobal::GetOsVersion(c);
    const String temp = c.host.shell.Environment(u"temp");
    if (!fs.FolderExists(temp)) modGlobal::MakeFolderTree(c, temp);
    c.support.g_AppDataFolder = c.host.shell.Environment(u"appdata");
    if (!fs.FolderExists(c.support.g_AppDataFolder)) c.support.g_AppDataFolder = temp;
    c.support.g_AppDataFolder = modGlobal::Join(c, c.support.g_AppDataFolder, u"Larkspin");
    if (!fs.FolderExists(c.support.g_AppDataFolder)) modGlobal::MakeFolderTree(c, c.support.g_AppDataFolder);
    LoadDefaultProjectXml(c);
    c.recording.g_RecordRequested = false;
    c.recording.g_Recording = false;
}

bool LoadDefaultProjectXml(const addin::Context& c) {
    if (c.addin.g_DefaultProjectDoc) return true;
    try {
        const std::string bytes = c.host.fs.ReadFile(modGlobal::Join(c, c.host.installFolder, u"default.ksp"));
        c.addin.g_DefaultProjectDoc = std::make_shared<modXml::Document>(modXml::Document::ParseBytes(bytes));
        return true;
    } catch (const host::Error& error) {
        c.host.trace.Skipped(error);
        return false;
    }
}

}  // namespace kestrum::modAddIn
