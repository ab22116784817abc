#include "project/modProject.h"

#include <algorithm>
#include <optional>

#include "host/ResumeNext.h"
#include "project/Converters.h"
#include "project/Paths.h"
#include "project/StoredProject.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"
#include "support/modXml.h"

namespace kestrum::modProject {
namespace {

using project::EnsureDecrypted;
using project::InInstallFolder;
using project::RunConverter;
using project::VersionOf;

/// The external editor counts as at work for this many seconds after its last mark.
constexpr std::int64_t kEditingSeconds = 9;

String Res(const support::Context& c, StringView section, StringView key, StringView text) {
    return modLanguage::GetResString(c, section, key, text);
}

/// Full name of the active presentation; empty if the host has none.
String PresentationName(const support::Context& c) {
    String name;
    host::ResumeNext{c.host.trace}.Set(name, [&] { return c.host.app.ActivePresentation()->FullName(); });
    return name;
}

bool RefuseUnsaved(const support::Context& c) {
    modMsgBox::MsgBox(c, Res(c, u"frmCommon", u"savePpt", u""));
    c.support.workFolder.clear();
    return false;
}

bool NeedsUpgrade(const support::Context& c, const String& legacyFolder, const String& package) {
    host::IFileSystem& fs = c.host.fs;
    return fs.FolderExists(legacyFolder) && !fs.FileExists(package) &&
           fs.FileExists(modGlobal::Join(c, legacyFolder, u"project.ksp")) &&
           fs.FileExists(modGlobal::Join(c, legacyFolder, u"media.ks"));
}

/// Only the generations 6 and 7 can be encrypted.
bool CheckLegacyEncryption(const support::Context& c, const String& folder) {
    const String version = VersionOf(c, modGlobal::Join(c, folder, u"project.ksp"));
    if (version.empty() || (version.front() != u'6' && version.front() != u'7')) return true;
    return EnsureDecrypted(c, modGlobal::Join(c, folder, u"media.ks"));
}

bool Upgrade(const support::Context& c, const String& legacyFolder, const String& package) {
    const host::BoxAnswer answer = modMsgBox::MsgBox(c, Res(c, u"frmCommon", u"msgNeedToUpgrade", u""),
                                                     host::BoxButtons::YesNo, u"Version Incompatible");
    if (answer != host::BoxAnswer::Yes || !CheckLegacyEncryption(c, legacyFolder)) return false;
    RunConverter(c, u"ksFmtCvt", {legacyFolder, package});
    return c.host.fs.FileExists(package);
}

std::int32_t LastMediaPos(const IndexItems& index) {
    std::int32_t last = -1;
    for (const CIndexItem& item : index) last = std::max(last, ToInt32(item.pos));
    return last;
}

/// The length that the project knows can be less than what the media holds (the library gave none, a crash came before
/// it was noted), and the next Save drops every entry beyond it. Entries that the media does reach are kept by taking
/// its length first.
void KeepEntriesInReach(const project::Context& c) {
    CProjectFile& file = c.project.g_Project;
    host::ResumeNext{c.host.trace}([&] {
        const std::int32_t last = LastMediaPos(file.index);
        if (last < file.duration() || !c.host.fs.FileExists(c.support.packagePath)) return;
        const std::int32_t length = c.host.ksLib.GetLength(project::NarrowPackage(c));
        if (length > last) file.SetDuration(length);
    });
}

void TellChangedMeanwhile(const support::Context& c) {
    modMsgBox::MsgBox(c, Res(c, u"frmCommon", u"msgChangedMeanwhile",
                             u"The lecture has been recorded or changed elsewhere in the meantime. What was changed "
                             u"here is not stored, so that nothing of that gets lost. Please open the lecture again."));
}

/// A folder of this command alone; an old one is never used again.
String MakeScratchFolder(const support::Context& c) {
    const String temp = c.host.shell.Environment(u"temp");
    String folder;
    do {
        folder = modGlobal::Join(c, temp, u"_ksproj_" + c.host.fs.TemporaryName());
    } while (c.host.fs.FolderExists(folder));
    host::ResumeNext{c.host.trace}([&] { c.host.fs.CreateFolder(folder); });
    return folder;
}

bool IsOnMovableDrive(const support::Context& c, const String& folder) {
    const host::DriveType type = c.host.fs.DriveType(folder);
    return type == host::DriveType::Removable || type == host::DriveType::Network || type == host::DriveType::Cd;
}

String HowToMove(const support::Context& c, const String& folder) {
    if (c.support.projectSource != u"PPT") return Res(c, u"frmMainBar", u"msgDriveTypeMove", u"");
    return Res(c, u"frmPPT", c.host.fs.FolderExists(folder) ? u"msgDriveTypeMovePPTwithFolder" : u"msgDriveTypeMovePPT",
               u"");
}

}  // namespace

bool LocateProject(const project::Context& c) {
    support::State& s = c.support;
    if (s.projectSource != u"PPT") return true;
    s.projectFileName.clear();
    const String name = PresentationName(c);
    if (!c.host.fs.FileExists(name)) return RefuseUnsaved(c);
    const String package = modGlobal::PackagePathOf(name);
    const String legacyFolder = modGlobal::BaseOfPresentation(name) + u".ksp";
    if (NeedsUpgrade(c, legacyFolder, package) && !Upgrade(c, legacyFolder, package)) return false;
    s.packagePath = package;
    s.packageFolder = modGlobal::FolderOf(c, package);
    s.workFolder = MakeScratchFolder(c);
    host::ResumeNext{c.host.trace}([&] { InitProject(c); });
    s.projectFileName = u"project.ksp";
    return true;
}

void SaveProject(const project::Context& c) {
    KeepEntriesInReach(c);
    CProjectFile& file = c.project.g_Project;
    file.Save(u"");
    // Told, but what was recorded must not stay in memory for one missing element.
    if (file.WrittenTo().empty()) file.SaveMended();
    // A project file that could not be written is older than what the package may hold by now: the package keeps its
    // own.
    if (file.WrittenTo().empty()) return;
    if (c.support.packagePath.empty()) return;
    if (project::StoredByOther(c)) return TellChangedMeanwhile(c);
    if (project::Pack(c)) return;
    c.project.folderToKeep = c.support.workFolder;
    const String text =
        Res(c, u"frmCommon", u"msgIndexKept",
            u"The index could not be stored in the package. It is kept in this folder until it can be:\n%s");
    modMsgBox::MsgBox(c, modGlobal::Replace(text, u"%s", c.support.workFolder));
}

void DeleteWorkFolder(const project::Context& c) {
    DeleteWorkFolder(c, c.support.workFolder);
}

void DeleteWorkFolder(const project::Context& c, const String& folder) {
    if (!folder.empty() && folder != c.project.folderToKeep) modGlobal::DeleteFolder(c, folder);
}

bool WarnDriveType(const project::Context& c, const String& folder) {
    if (IsOnMovableDrive(c, folder)) {
        const String text = Res(c, u"frmMainBar", u"msgDriveType", u"") + HowToMove(c, folder);
        modMsgBox::MsgBox(c, modGlobal::Replace(text, u"%s", folder));
    }
    return true;
}

bool IsEditingElsewhere(const project::Context& c) {
    // A value that was never set counts as long past, like any text that is no date.
    const auto touched = ParseDateTime(modConfig::GetSetting(c, u"configure", u"touchTime", u""));
    if (!touched) return false;
    const std::int64_t age = SecondsBetween(*touched, c.host.loop.Now());
    if (age < 0 || age > kEditingSeconds) return false;
    modMsgBox::MsgBox(c, Res(c, u"frmCommon", u"msgEditing", u""));
    return true;
}

String GetProgramVersion(const support::Context& c) {
    String version;
    host::ResumeNext{c.host.trace}.Set(version, [&] {
        const std::string bytes = c.host.fs.ReadFile(InInstallFolder(c, u"default.ksp"));
        return modXml::Document::ParseBytes(bytes).Root().Attribute(u"ver").value_or(u"");
    });
    return version;
}

}  // namespace kestrum::modProject
