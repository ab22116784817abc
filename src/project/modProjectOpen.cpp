// OpenProject step by step. A step that refuses ends the opening; one that fails is skipped, and the next one runs.
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

/// Refuses even if the box fails.
bool Refuse(const support::Context& c, const String& text) {
    host::ResumeNext{c.host.trace}([&] { modMsgBox::MsgBox(c, text); });
    return false;
}

bool Refuse(const support::Context& c, StringView section, StringView key, StringView text) {
    return Refuse(c, modLanguage::GetResString(c, section, key, text));
}

bool HasWorkFolder(const support::Context& c) {
    return c.host.fs.FolderExists(c.support.workFolder) || modGlobal::EnsureFolder(c, c.support.workFolder);
}

bool IsWritable(const support::Context& c) {
    return modGlobal::TestFolderWritable(c, c.support.packageFolder) ||
           Refuse(c, u"frmNewProject", u"msgReadOnly", u"");
}

bool HasSpace(const support::Context& c) {
    const std::int64_t free = modGlobal::GetFreeSpaceMB(c, c.support.packageFolder);
    if (free >= kLeastFreeMegabytes) return true;
    const String text = modLanguage::GetResString(c, u"frmNewProject", u"msgDiskSpace", u"");
    return Refuse(c, text + u": " + ToText(free) + u"MB");
}

/// The stored files are newer than the snapshot if they are there at all; else the snapshot is stored in their place,
/// for the next opening.
void TakeUpFailedRecording(const project::Context& c) {
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

bool UnpackOrdinary(const project::Context& c) {
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
    return c.project.g_Project.Load(InWorkFolder(c, u"project.ksp"));
}

void PlacePhoto(const project::Context& c) {
    const String photo = project::PhotoFile(c);
    if (!c.host.fs.FileExists(photo)) modGlobal::SafeMoveFile(c, InWorkFolder(c, u"photo.gif"), photo, true);
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

/// The steps in their order. `Refuses` is true for a step that says no; one that fails does not refuse.
class Opening {
  public:
    explicit Opening(const project::Context& c) : m_c(c), m_try(c.host.trace) {}

    bool Run(bool isNew) {
        if (Refuses(HasWorkFolder) || Refuses(IsWritable) || Refuses(HasSpace)) return false;
        m_try([&] { modGlobal::ClearReadOnly(m_c, m_c.support.workFolder); });
        if (isNew)
            FillWorkFolder();
        else if (Refuses(Unpack))
            return false;
        m_try([&] { InitProject(m_c); });
        if (Refuses(CheckVersion)) return false;
        // The one exception: what was not loaded must never come to be stored.
        if (!m_try.If([&] { return LoadProject(m_c); })) return false;
        m_try([&] { PlacePhoto(m_c); });
        if (MediaRefuse()) return false;
        if (isNew) m_try([&] { FillNewProject(m_c, m_videoSize); });
        if (Refuses(CheckIndex)) return false;
        if (!m_c.host.fs.FileExists(InWorkFolder(m_c, u"index.html"))) m_try([&] { ApplyTemplateFiles(m_c); });
        return true;
    }

  private:
    template <class Step>
    bool Refuses(const Step& step) {
        return m_try.If([&] { return !step(m_c); });
    }

    /// A missing template shows when the version is looked at.
    void FillWorkFolder() {
        m_try([&] { CopyTemplate(m_c); });
        m_try.Set(m_videoSize, [&] { return modConfig::GetSetting(m_c, u"configure", u"videoSize", u""); });
    }

    bool MediaRefuse() {
        if (!m_try.If([&] { return project::HoldsMedia(m_c); })) return false;
        return Refuses([](const project::Context& c) {
                   return modMediaKs::IsKsFmtCompatible(c, project::NarrowPackage(c));
               }) ||
               Refuses([](const project::Context& c) { return project::EnsureDecrypted(c, c.support.packagePath); });
    }

    const project::Context& m_c;
    host::ResumeNext m_try;
    String m_videoSize;
};

}  // namespace

bool OpenProject(const project::Context& c, bool isNew, bool& continued) {
    continued = false;
    c.project.storedProject.clear();
    const String before = c.host.ksLib.LastRecovery();
    const bool wasCutShort = !isNew && c.host.fs.FileExists(project::Snapshot(c));
    const bool opened = Opening(c).Run(isNew);
    // Told whichever step made the library recover a torn package: the verification, or the first write to it.
    const String recovered = c.host.ksLib.LastRecovery();
    if (recovered != before)
        TellRecovery(c, recovered);
    else if (wasCutShort && opened)
        TellRecovery(c, WhatIsThere(c));
    return opened;
}

}  // namespace kestrum::modProject
