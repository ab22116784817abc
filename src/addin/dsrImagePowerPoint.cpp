// Connection, disconnection, and the entrance of the commands.
#include "addin/dsrImagePowerPoint.h"

#include "addin/OfficeVersions.h"
#include "addin/modAddIn.h"
#include "display/modResolution.h"
#include "host/ResumeNext.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

dsrImagePowerPoint::dsrImagePowerPoint(const addin::Context& c, host::ICommandBars* commandBars)
    : m_c(c), m_commandBars(commandBars) {}

void dsrImagePowerPoint::IDTExtensibility2_OnConnection(host::IApplication& application, const String& progId) {
    host::ResumeNext Try(m_c.host.trace);
    m_progId = progId;
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
    Try([&] { PutSurfaceUp(); });
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
    UseRibbon = OfficeMajor >= addin::kOffice2007;
}

// A host that is not Office has neither a customisation file nor command bars.
void dsrImagePowerPoint::PutSurfaceUp() {
    if (!m_commandBars) return;
    if (!UseRibbon) return BuildCommandBarSurface();
    const String file = OfficeMajor >= addin::kOffice2010 ? u"PowerPoint.officeUI" : u"PowerPoint.qat";
    const String folder = modGlobal::Join(m_c, modGlobal::GetLocalAppDataPath(m_c), u"Microsoft");
    CustomUIPath = modGlobal::Join(m_c, modGlobal::Join(m_c, folder, u"Office"), file);
    if (m_c.host.fs.FileExists(CustomUIPath)) {
        PatchCustomUI(CustomUIPath, OfficeMajor);
    } else {
        m_c.host.fs.CopyFile(modGlobal::Join(m_c, m_c.host.installFolder, file), CustomUIPath);
    }
}

void dsrImagePowerPoint::TakeSurfaceDown() {
    if (!m_commandBars) return;
    if (UseRibbon) {
        UnpatchCustomUI(CustomUIPath);
    } else {
        RemoveCommandBarSurface();
    }
}

// The host has just started with no presentation: a marker of a recording is what a crash left. With a presentation
// open the session that set it may be alive.
void dsrImagePowerPoint::DisarmStaleMarker(host::IApplication& application) {
    if (application.PresentationCount() != 0) return;
    if (modConfig::GetSetting(m_c, modGlobal::kPowerPointTokens, u"recording", u"0") != u"1") return;
    modConfig::SaveSetting(m_c, modGlobal::kPowerPointTokens, u"recording", u"0");
    modConfig::SaveSetting(m_c, modGlobal::kPowerPointTokens, u"project", u"");
}

void dsrImagePowerPoint::IDTExtensibility2_OnDisconnection() {
    host::ResumeNext Try(m_c.host.trace);
    if (m_c.support.g_HostMode == u"PPT") {
        Try([&] {
            if (m_viewer) m_viewer->Unload();
        });
        // The process holds no folder of a project or of the program open.
        Try([&] { m_c.host.fs.SetCurrentFolder(m_c.host.shell.Environment(u"temp")); });
        Try([&] { TakeSurfaceDown(); });
    }
    Try([&] { m_c.host.power.SetExecutionState(host::kExecutionContinuous); });
}

}  // namespace kestrum
