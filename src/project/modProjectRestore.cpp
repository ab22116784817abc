// What is laid over a scratch folder: an editor's save point, the player and template files.
#include "host/ResumeNext.h"
#include "project/Paths.h"
#include "project/modProject.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum::modProject {
namespace {

using project::InWorkFolder;

/// A name beside the package that is free.
String AsideName(const support::Context& c) {
    const String base = c.support.packagePath + u".replaced";
    String name = base;
    for (int number = 2; c.host.fs.FileExists(name); ++number) name = base + ToText(number);
    return name;
}

/// Puts the save point in the place of package and project file. The package that it replaces is set aside, not
/// deleted: it may hold a recording that the save point does not.
void RestoreSavePoint(const support::Context& c) {
    const String& package = c.support.packagePath;
    const String aside = AsideName(c);
    const bool hadPackage = c.host.fs.FileExists(package);
    if (hadPackage && !modGlobal::SafeMoveFile(c, package, aside, true)) return;
    if (!modGlobal::SafeMoveFile(c, InWorkFolder(c, u"media.ks.__"), package, true)) {
        if (hadPackage) modGlobal::SafeMoveFile(c, aside, package, true);
        return;
    }
    modGlobal::SafeMoveFile(c, InWorkFolder(c, u"project.ksp.__"), InWorkFolder(c, u"project.ksp"), true);
}

void EndBrokenImport(const support::Context& c) {
    const String marker = c.support.packagePath + u".move";
    if (!c.host.fs.FileExists(marker)) return;
    modMsgBox::MsgBox(c, u"Move file error during import!", host::BoxButtons::Ok, u"InitProject");
    if (!c.host.fs.FileExists(c.support.packagePath) && c.host.fs.FileExists(InWorkFolder(c, u"media.ks.__")))
        RestoreSavePoint(c);
    modGlobal::SafeDeleteFile(c, marker);
}

/// A template's name counts as a folder name only.
String TemplateFolder(const project::Context& c) {
    String& name = c.project.g_Project.template_;
    String folder = project::InInstallFolder(c, u"template", project::OwnName(c, name, u"default"));
    if (name.empty() || !c.host.fs.FolderExists(folder)) {
        name = u"default";
        folder = project::InInstallFolder(c, u"template", name);
    }
    return folder;
}

/// A photo that did not come back would be replaced by the template's in the package, for good.
void MoveOrCopy(const support::Context& c, const String& source, const String& target) {
    if (!modGlobal::SafeMoveFile(c, source, target, true)) modGlobal::SafeCopyFile(c, source, target);
}

void KeepOwnCursor(const support::Context& c) {
    const String own = InWorkFolder(c, u"cursor.gif");
    modGlobal::MakeFolderTree(c, InWorkFolder(c, u"icons"));
    if (c.host.fs.FileExists(own) && modGlobal::SafeCopyFile(c, own, project::PlayerCursor(c)))
        modGlobal::SafeDeleteFile(c, own);
}

}  // namespace

void InitProject(const project::Context& c) {
    EndBrokenImport(c);
    if (!c.host.fs.FileExists(InWorkFolder(c, u"media.ks.__")) || !c.host.fs.FileExists(c.support.packagePath)) return;
    modMsgBox::MsgBox(c, modLanguage::GetResString(c, u"frmEditor", u"msgRestoreBackup",
                                                   u"Editor failed to shut down correctly last time. The files will be "
                                                   u"restored to the most recent save point."));
    RestoreSavePoint(c);
}

void ApplyTemplateFiles(const project::Context& c) {
    const host::ResumeNext Try{c.host.trace};
    const String photo = project::PhotoFile(c);
    const String aside = InWorkFolder(c, u"bak." + project::PhotoName(c));
    if (c.host.fs.FileExists(photo)) MoveOrCopy(c, photo, aside);
    Try([&] { c.host.fs.CopyFolder(project::InInstallFolder(c, u"encfiles"), c.support.workFolder); });
    Try([&] { c.host.fs.CopyFolder(TemplateFolder(c), c.support.workFolder); });
    KeepOwnCursor(c);
    modGlobal::SafeDeleteFile(c, InWorkFolder(c, u"index.jpg"));
    modGlobal::SafeDeleteFile(c, InWorkFolder(c, u"pic.jpg"));
    if (c.host.fs.FileExists(aside)) MoveOrCopy(c, aside, photo);
    SaveProject(c);
}

}  // namespace kestrum::modProject
