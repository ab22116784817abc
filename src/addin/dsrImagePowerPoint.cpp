// Connection, disconnection, and the entrance of the commands.
#include "addin/dsrImagePowerPoint.h"

#include "addin/modAddIn.h"
#include "display/modResolution.h"
#include "host/ResumeNext.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

constexpr StringView kPowerPointToken = u"tokens\\PowerPoint";
constexpr StringView kLarkspinToken = u"tokens\\Larkspin";
constexpr std::int16_t kFirstWithRibbon = 12;

}  // namespace

dsrImagePowerPoint::dsrImagePowerPoint(const addin::Context& c, addin::ICommandSurface* surface)
    : m_c(c), m_surface(surface) {}

void dsrImagePowerPoint::IDTExtensibility2_OnConnection(host::IApplication& application) {
    host::ResumeNext Try(m_c.host.trace);
    m_c.support.applicationTitle = u"Kestrum for PowerPoint";
    m_c.support.g_HostMode = u"PPT";
    Try([&] {
        if (!m_viewer) m_viewer = std::make_unique<frmViewer>(m_c);
        m_viewer->Load();
        m_viewer->SetPptApp(application);
    });
    Try.Set(m_c.support.g_OsVersion, [&] { return modGlobal::GetOsVersion(m_c); });
    Try([&] { modResolution::SurveyResolution(m_c, 0); });
    Try([&] { ReadOfficeMajor(application); });
    Try([&] {
        if (m_surface) m_surface->Install(OfficeMajor);
    });
    Try([&] { modAddIn::InitFolders(m_c); });
    Try([&] { DisarmStaleMarker(application); });
    Try([&] {
        m_c.host.power.SetExecutionState(host::kExecutionContinuous | host::kExecutionSystemRequired |
                                         host::kExecutionDisplayRequired);
    });
}

void dsrImagePowerPoint::ReadOfficeMajor(host::IApplication& application) {
    UseRibbon = false;
    String version = application.Version();
    OfficeMajor = ToInt16(version.substr(0, version.find(u'.')));
    UseRibbon = OfficeMajor >= kFirstWithRibbon;
}

// The host has just started with no presentation: a marker of a recording is what a crash left. With a presentation
// open the session that set it may be alive.
void dsrImagePowerPoint::DisarmStaleMarker(host::IApplication& application) {
    if (application.PresentationCount() != 0) return;
    if (modConfig::GetSetting(m_c, kPowerPointToken, u"recording", u"0") != u"1") return;
    modConfig::SaveSetting(m_c, kPowerPointToken, u"recording", u"0");
    modConfig::SaveSetting(m_c, kPowerPointToken, u"project", u"");
}

void dsrImagePowerPoint::IDTExtensibility2_OnDisconnection() {
    host::ResumeNext Try(m_c.host.trace);
    if (m_c.support.g_HostMode == u"PPT") {
        Try([&] {
            if (m_viewer) m_viewer->Unload();
        });
        // The process holds no folder of a project or of the program open.
        Try([&] { m_c.host.fs.SetCurrentFolder(m_c.host.shell.Environment(u"temp")); });
        Try([&] {
            if (m_surface) m_surface->Remove();
        });
    }
    Try([&] { m_c.host.power.SetExecutionState(host::kExecutionContinuous); });
}

void dsrImagePowerPoint::NotesButton(StringView id) {
    if (!MayRun(id)) return;
    if (id == u"rec") p_ctlBtnRec_Click();
    if (id == u"mnuMP4") p_menuPublish2MP4_Click();
    if (id == u"mnuConfigure") p_menuConfigure_Click();
    if (id == u"mnuDevice") p_menuCfgDevice_Click();
    if (id == u"mnuChangeRes") p_menuChangeRes_Click();
}

bool dsrImagePowerPoint::MayRun(StringView id) {
    host::ResumeNext Try(m_c.host.trace);
    auto isLive = [&](StringView section, StringView owner) {
        return Try.If([&] {
            return modConfig::GetSetting(m_c, section, u"recording", u"0") == u"1" &&
                   modGlobal::IsTokenFresh(m_c, owner);
        });
    };
    auto refuseFor = [&](StringView program) {
        String text = modLanguage::GetResString(m_c, u"frmPPT", u"msgRecording",
                                                u"A recording is in progress in %s. Please end it first!");
        modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", program));
        return false;
    };
    if (isLive(kPowerPointToken, u"PowerPoint")) return refuseFor(u"PowerPoint");
    bool openElsewhere = Try.If([&] {
        String package = modGlobal::PackagePathOf(m_c.host.app.ActivePresentation()->FullName());
        return package == modConfig::GetSetting(m_c, kLarkspinToken, u"project", u"") &&
               modGlobal::IsTokenFresh(m_c, u"Larkspin");
    });
    if (openElsewhere) {
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", u"msgProjectIsOpen",
                                                         u"The project of this presentation is open in Kestrum. Please "
                                                         u"close it there first!"));
        return false;
    }
    bool needsDevices = id == u"mnuDevice" || id == u"mnuConfigure";
    return !needsDevices || !isLive(kLarkspinToken, u"Larkspin") || refuseFor(u"Kestrum");
}

}  // namespace kestrum
