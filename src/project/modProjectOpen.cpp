// OpenProject step by step. Each step answers whether to go on; a statement that fails is skipped.
#include "host/ResumeNext.h"
#include "project/Converters.h"
#include "project/Paths.h"
#include "project/StoredProject.h"
#include "project/modMediaKs.h"
#include "project/modProject.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum::modProject {
namespace {

using project::InWorkFolder;

constexpr std::int64_t kLeastFreeMegabytes = 100;

bool Refuse(const support::Context& c, const String& text) {
    modMsgBox::MsgBox(c, text);
    return false;
}

bool Refuse(const support::Context& c, StringView section, StringView key, StringView text) {
    return Refuse(c, modLanguage::GetResString(c, section, key, text));
}

bool PrepareFolders(const support::Context& c) {
    const String& folder = c.support.packageFolder;
    if (!c.host.fs.FolderExists(c.support.workFolder) && !modGlobal::EnsureFolder(c, c.support.workFolder))
        return false;
    if (!modGlobal::TestFolderWritable(c, folder)) return Refuse(c, u"frmNewProject", u"msgReadOnly", u"");
    const std::int64_t free = modGlobal::GetFreeSpaceMB(c, folder);
    if (free < kLeastFreeMegabytes) {
        const String text = modLanguage::GetResString(c, u"frmNewProject", u"msgDiskSpace", u"");
        return Refuse(c, text + u": " + ToText(free) + u"MB");
    }
    modGlobal::ClearReadOnly(c, c.support.workFolder);
    return true;
}

/// The stored files are newer than the snapshot if they are there at all; else the snapshot is stored in their place,
/// for the next opening.
void TakeUpFailedRecording(const support::Context& c) {
    const String snapshot = project::Snapshot(c);
    if (project::Unpack(c)) {
        modGlobal::SafeDeleteFile(c, snapshot);
        modGlobal::DeleteFolder(c, project::RecordingFolder(c));
        return;
    }
    const host::StoredFiles files{snapshot, project::DefaultCursor(c),
                                  project::InInstallFolder(c, u"encfiles", u"photo.gif"),
                                  InWorkFolder(c, u"inteIndex.txt")};
    c.host.ksLib.SetExtendDataInProject(project::NarrowPackage(c), project::NarrowPaths(c, files));
}

bool UnpackFailedRecording(const project::Context& c) {
    if (!modMediaKs::VerifyMedia(c, c.support.packagePath, true, true)) return false;
    TakeUpFailedRecording(c);
    return true;
}

bool UnpackOrdinary(const support::Context& c) {
    return project::Unpack(c) || Refuse(c, u"frmCommon", u"msgVerifyProjectErr", u"Verify project error!");
}

bool Unpack(const project::Context& c) {
    return c.host.fs.FileExists(project::Snapshot(c)) ? UnpackFailedRecording(c) : UnpackOrdinary(c);
}

void CopyTemplate(const support::Context& c) {
    modGlobal::SafeCopyFile(c, project::InInstallFolder(c, u"default.ksp"), InWorkFolder(c, u"project.ksp"));
}

bool CheckVersion(const support::Context& c) {
    const String version = project::VersionOf(c, InWorkFolder(c, u"project.ksp"));
    if (version.empty() || version.front() < u'0' || version.front() > u'9')
        return Refuse(c, u"Unrecognized project version!");
    if (version.front() - u'0' > CProjectFile::kMajorVersion)
        return Refuse(c, u"frmCommon", u"msgNeedNewVer", u"Incompatible project version! Please upgrade your Kestrum!");
    return true;
}

bool LoadProject(const project::Context& c) {
    if (!c.project.g_Project.Load(InWorkFolder(c, u"project.ksp"))) return false;
    const String photo = project::PhotoFile(c);
    if (!c.host.fs.FileExists(photo)) modGlobal::SafeMoveFile(c, InWorkFolder(c, u"photo.gif"), photo, true);
    return true;
}

bool CheckMedia(const project::Context& c) {
    if (!project::HoldsMedia(c)) return true;
    return modMediaKs::IsKsFmtCompatible(c, project::NarrowPackage(c)) &&
           project::EnsureDecrypted(c, c.support.packagePath);
}

bool EndsIn(const String& text, StringView ending) {
    return StringView(text).ends_with(ending);
}

/// File name of the package without its extension.
String TitleOfPackage(const support::Context& c) {
    String title = modGlobal::FileNameOf(c, c.support.packagePath);
    if (EndsIn(title, u".ktr")) title.resize(title.size() - 4);
    if (EndsIn(modGlobal::LowerCase(title), u".ktr")) title.resize(title.size() - 4);
    return title;
}

void FillNewProject(const project::Context& c, const String& videoSize) {
    CProjectFile& file = c.project.g_Project;
    const bool hasTitle = c.support.projectSource != u"PPT";
    if (hasTitle) file.title = TitleOfPackage(c);
    if (!videoSize.empty()) file.videoSize = videoSize;
    if (hasTitle || !videoSize.empty()) file.Save(u"");
}

bool CheckIndex(const project::Context& c) {
    c.project.itemCount = c.project.g_Project.index.Count();
    return c.project.itemCount <= 0 || modMediaKs::VerifyIndex(c);
}

void TellRecovery(const support::Context& c, const String& recovered) {
    const String text = modLanguage::GetResString(
        c, u"frmCommon", u"msgRecovered", u"The last recording was interrupted. What was recorded has been recovered.");
    modMsgBox::MsgBox(c, text + u"\r\n" + recovered);
}

/// What there is of a recording that was cut short, but whose package could be finished all the same.
String WhatIsThere(const project::Context& c) {
    const String text =
        modLanguage::GetResString(c, u"frmCommon", u"msgRecoveredWhole", u"Index entries: %s1. Length: %s2.");
    const CProjectFile& file = c.project.g_Project;
    return modGlobal::Replace(modGlobal::Replace(text, u"%s1", ToText(file.index.Count())), u"%s2", file.durationText);
}

bool Open(const project::Context& c, bool isNew) {
    const host::ResumeNext Try{c.host.trace};
    if (!Try.If([&] { return PrepareFolders(c); })) return false;
    const String videoSize = isNew ? modConfig::GetSetting(c, u"configure", u"videoSize", u"") : String();
    if (isNew)
        Try([&] { CopyTemplate(c); });
    else if (!Try.If([&] { return Unpack(c); }))
        return false;
    Try([&] { InitProject(c); });
    if (!Try.If([&] { return CheckVersion(c); })) return false;
    if (!Try.If([&] { return LoadProject(c); })) return false;
    if (!Try.If([&] { return CheckMedia(c); })) return false;
    if (isNew) Try([&] { FillNewProject(c, videoSize); });
    if (!Try.If([&] { return CheckIndex(c); })) return false;
    if (!c.host.fs.FileExists(InWorkFolder(c, u"index.html"))) Try([&] { ApplyTemplateFiles(c); });
    return true;
}

}  // namespace

bool OpenProject(const project::Context& c, bool isNew, bool& continued) {
    continued = false;
    const String before = c.host.ksLib.LastRecovery();
    const bool wasCutShort = !isNew && c.host.fs.FileExists(project::Snapshot(c));
    const bool opened = Open(c, isNew);
    // Told whichever step made the library recover a torn package: the verification, or the first write to it.
    const String recovered = c.host.ksLib.LastRecovery();
    if (recovered != before)
        TellRecovery(c, recovered);
    else if (wasCutShort && opened)
        TellRecovery(c, WhatIsThere(c));
    return opened;
}

}  // namespace kestrum::modProject
