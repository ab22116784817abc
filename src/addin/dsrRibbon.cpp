// The ribbon's callbacks and the entrance of the commands.
#include <algorithm>

#include "addin/OfficeVersions.h"
#include "addin/dsrImagePowerPoint.h"
#include "host/ResumeNext.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"
#include "support/modXml.h"

namespace kestrum {

// Between the two versions none was published: it gets no ribbon.
String dsrImagePowerPoint::IRibbonExtensibility_GetCustomUI(StringView) {
    if (OfficeMajor == addin::kOffice2007)
        return GetRibbonXML(modGlobal::Join(m_c, m_c.host.installFolder, u"Ribbon.xml"));
    if (OfficeMajor < addin::kOffice2010) return {};
    return GetRibbonXML(modGlobal::Join(m_c, m_c.host.installFolder, u"Ribbon2010.xml"));
}

String dsrImagePowerPoint::GetRibbonXML(const String& path) {
    const host::ResumeNext Try(m_c.host.trace);
    modXml::Document document;
    if (!Try.Set(document, [&] { return modXml::Document::ParseBytes(m_c.host.fs.ReadFile(path)); })) return {};
    const modXml::Node root = document.Root();
    modXml::Node tab;
    Try([&] {
        tab = root.Child(0).Child(0).Child(0);
        tab.SetAttribute(u"label", modLanguage::kProductName);
    });
    Try([&] { tab.Child(0).SetAttribute(u"label", modLanguage::kProductName); });
    return document.Xml();
}

bool dsrImagePowerPoint::GetChangeResVisible() {
    const host::ResumeNext Try(m_c.host.trace);
    std::size_t monitors = 0;
    Try.Set(monitors, [&] { return m_c.host.monitors.Handles().size(); });
    if (monitors >= 2) return false;
    return !(monitors == 1 && Try.If([&] {
        const auto current = m_c.host.monitors.CurrentMode(0);
        return current && current->width == m_c.display.g_RcmdResWidth &&
               current->height == m_c.display.g_RcmdResHeight;
    }));
}

const std::array<dsrImagePowerPoint::Command, 17> dsrImagePowerPoint::kCommands{{
    {u"rec", &dsrImagePowerPoint::DoRecord},
    {u"mnuEdit", &dsrImagePowerPoint::Edit},
    {u"mnuUpload", &dsrImagePowerPoint::Upload},
    {u"mnuCompress", &dsrImagePowerPoint::Compress},
    {u"mnuPreview", &dsrImagePowerPoint::Preview},
    {u"mnuConfigure", &dsrImagePowerPoint::Configure},
    {u"mnuAudio", &dsrImagePowerPoint::PublishToMp3},
    {u"mnuKestrum7", &dsrImagePowerPoint::PublishToKestrum7},
    {u"mnuflash", &dsrImagePowerPoint::PublishToFlash},
    {u"mnuWMV", &dsrImagePowerPoint::PublishToWmv},
    {u"mnuMP4", &dsrImagePowerPoint::PublishToMp4},
    {u"mnuAdvEdit", &dsrImagePowerPoint::AdvancedEdit},
    {u"mnuChangeRes", &dsrImagePowerPoint::ChangeResolution},
    {u"mnuDevice", &dsrImagePowerPoint::ConfigureDevices},
    {u"mnuYtUpload", &dsrImagePowerPoint::UploadToYouTube},
    {u"mnuHelp", &dsrImagePowerPoint::Help},
    {u"mnuAbout", &dsrImagePowerPoint::About},
}};

std::vector<StringView> dsrImagePowerPoint::CommandIds() {
    std::vector<StringView> ids;
    for (const Command& command : kCommands) ids.push_back(command.id);
    return ids;
}

void dsrImagePowerPoint::NotesButton(StringView id) {
    if (!MayRun(id)) return;
    const auto* command =
        std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& one) { return one.id == id; });
    if (command != kCommands.end()) (this->*command->run)();
}

bool dsrImagePowerPoint::MayRun(StringView id) {
    host::ResumeNext Try(m_c.host.trace);
    auto refuseFor = [&](StringView program) {
        String text = modLanguage::GetResString(m_c, u"frmPPT", u"msgRecording",
                                                u"A recording is in progress in %s. Please end it first!");
        modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", program));
        return false;
    };
    if (modGlobal::IsRecordingLive(m_c, u"PowerPoint")) return refuseFor(u"PowerPoint");
    bool openElsewhere = Try.If([&] {
        String package = modGlobal::PackagePathOf(m_c.host.app.ActivePresentation()->FullName());
        return package == modConfig::GetSetting(m_c, modGlobal::kLarkspinTokens, u"project", u"") &&
               modGlobal::IsTokenFresh(m_c, u"Larkspin");
    });
    if (openElsewhere) {
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", u"msgProjectIsOpen",
                                                         u"The project of this presentation is open in Kestrum. Please "
                                                         u"close it there first!"));
        return false;
    }
    bool needsDevices = id == u"mnuDevice" || id == u"mnuConfigure";
    return !needsDevices || !modGlobal::IsRecordingLive(m_c, u"Larkspin") || refuseFor(u"Kestrum");
}

}  // namespace kestrum
