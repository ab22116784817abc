// The commands that edit, show, set up and upload a lecture.
#include "addin/MenuTree.h"
#include "addin/OfficeVersions.h"
#include "addin/dsrImagePowerPoint.h"
#include "addin/frmAbout.h"
#include "devices/frmConfig.h"
#include "devices/frmDevice.h"
#include "display/modResolution.h"
#include "project/modSlide.h"
#include "support/frmExecCmd.h"
#include "support/modExec.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

constexpr char16_t kPreviewer[] = u"ksPreviewer";

}  // namespace

// --- tools -----------------------------------------------------------------------------------------------------------

String dsrImagePowerPoint::Tool(const String& baseName) {
    return modGlobal::Join(m_c, m_c.host.installFolder, m_c.host.processes.ProgramName(baseName));
}

// Preview does not count as busy, so a tool's window may be up.
bool dsrImagePowerPoint::IsToolRunning() {
    if (!m_c.forms.IsFormLoaded(u"frmExecCmd")) return false;
    modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", u"msgCommandOpen",
                                                     u"Another command of %p is open. Please close it first!"));
    return true;
}

void dsrImagePowerPoint::RunTool(const String& baseName, const std::vector<String>& arguments, const String& title) {
    if (IsToolRunning()) return;
    auto& window = m_c.forms.Get<frmExecCmd>(m_c);
    window.InitCmd(Tool(baseName), arguments, false);
    window.Load();
    if (!title.empty()) window.SetCaption(title);
    if (baseName == kPreviewer) window.LetUserEnd();
    window.ShowModal();
}

void dsrImagePowerPoint::Edit() {
    RunGuarded({.question = u"Continue editing?"}, [this] {
        RunTool(u"kseditor", {m_c.support.workFolder, m_c.support.packagePath}, u"");
    });
}

void dsrImagePowerPoint::AdvancedEdit() {
    RunGuarded({.question = u"Continue advanced editing?"}, [this] {
        RunTool(u"ksAdvEditor", {m_c.support.workFolder, m_c.support.packagePath}, u"");
    });
}

// The package goes along: the page in the work folder has no media of its own.
void dsrImagePowerPoint::Preview() {
    const String question = modLanguage::GetResString(m_c, u"frmPPT", u"msgContinuePreview", u"Continue previewing?");
    RunGuarded({.question = question, .countsAsBusy = false}, [this] {
        modSlide::WriteAbstract(m_c);
        const String program = m_c.host.processes.ProgramName(kPreviewer);
        if (!m_c.host.fs.FileExists(Tool(kPreviewer))) {
            return modMsgBox::MsgBox(m_c, u"Preview failed! Cannot find \"" + program + u"\"!");
        }
        RunTool(kPreviewer,
                {modGlobal::Join(m_c, m_c.support.workFolder, u"index.html"), m_c.project.g_Project.template_,
                 m_c.support.packagePath},
                modLanguage::GetResString(
                    m_c, u"frmPPT", u"msgPreviewOpen",
                    u"The preview is open in the browser. Close its page, or this window, to go on."));
    });
}

// --- upload ----------------------------------------------------------------------------------------------------------

void dsrImagePowerPoint::RunUploadTool(const String& verb, const String& title, StringView command) {
    if (OfficeMajor < addin::kOffice2013 || !m_c.host.fs.FileExists(Tool(u"kstool"))) {
        return SayNotYet(command);
    }
    RunTool(u"kstool", {verb, m_c.support.workFolder, m_c.support.packagePath}, title);
}

void dsrImagePowerPoint::Upload() {
    RunGuarded({.question = u"Continue uploading?", .refusesNetwork = true}, [this] {
        modSlide::CollectSlideTitles(m_c, false);
        modSlide::WriteAbstract(m_c);
        RunUploadTool(u"upload", u"Export", u"mnuUpload");
    });
}

void dsrImagePowerPoint::UploadToYouTube() {
    constexpr std::int32_t kLongestMs = 15 * 60 * 1000;
    RunGuarded({.question = u"Continue uploading to YouTube?", .refusesNetwork = true}, [this] {
        if (m_c.host.ksLib.GetLength(m_c.support.packagePath) > kLongestMs) {
            modMsgBox::MsgBox(m_c,
                              modLanguage::GetResString(m_c, u"frmYtUpload", u"msg15MinLimit",
                                                        u"Videos of more than 15 minutes may be refused by the site."));
        }
        RunUploadTool(u"ytupload", u"", u"mnuYtUpload");
    });
}

void dsrImagePowerPoint::SayNotYet(StringView command) {
    const String text = modLanguage::GetResString(m_c, u"frmPPT", u"msgNotYet",
                                                  u"This version of %p does not have the command \"%s\" yet.");
    modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", MenuTree::CaptionOf(m_c, command)));
}

// --- settings --------------------------------------------------------------------------------------------------------

void dsrImagePowerPoint::Configure() {
    RunGuarded({u"Continue opening configure?", &dsrImagePowerPoint::OpenForSettings},
               [this] { m_c.forms.Get<frmConfig>(m_c).ShowModal(); });
}

void dsrImagePowerPoint::ConfigureDevices() {
    RunGuarded({u"Continue opening device settings?", &dsrImagePowerPoint::OpenForDevices},
               [this] { m_c.forms.Get<frmDevice>(m_c).ShowModal(); });
}

void dsrImagePowerPoint::ConfigureTemplate() {
    RunGuarded({u"Continue opening template settings?", &dsrImagePowerPoint::OpenForDevices},
               [this] { SayNotYet(u"mnuConfigTemplate"); });
}

// The display belongs to no lecture: nothing is opened for it.
void dsrImagePowerPoint::ChangeResolution() {
    modResolution::ChangeResolution(m_c);
}

// --- help ------------------------------------------------------------------------------------------------------------

// Where paths have backslashes the system's explorer shows pages, elsewhere the desktop knows who does.
void dsrImagePowerPoint::Help() {
    const String page = modGlobal::Join(m_c, modGlobal::Join(m_c, m_c.host.installFolder, u"help"), u"index.html");
    const bool hasExplorer = m_c.host.fs.Separator() == u'\\';
    const bool opened = hasExplorer ? modExec::ShellExecuteWait(m_c, u"explorer", {page}, false)
                                    : modExec::ShellExecuteWait(m_c, page, {}, false);
    if (opened) return;
    const String text =
        modLanguage::GetResString(m_c, u"frmPPT", u"msgNoHelp", u"The help cannot be shown. You find it here:\n%s");
    modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", page));
}

void dsrImagePowerPoint::About() {
    if (!m_c.forms.IsFormLoaded(u"frmAbout")) m_c.forms.Get<frmAbout>(m_c).ShowModal();
}

}  // namespace kestrum
