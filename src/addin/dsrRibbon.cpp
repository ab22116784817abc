// The ribbon's callbacks and the entrance of the commands.
#include <algorithm>
#include <array>

#include "addin/dsrImagePowerPoint.h"
#include "host/ResumeNext.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"
#include "support/modXml.h"

namespace kestrum {

namespace {

constexpr StringView kPowerPointToken = u"tokens\\PowerPoint";
constexpr StringView kLarkspinToken = u"tokens\\Larkspin";
constexpr std::int16_t kOffice2007 = 12;
constexpr std::int16_t kOffice2010 = 14;

}  // namespace

// Between the two versions none was published: it gets no ribbon.
String dsrImagePowerPoint::IRibbonExtensibility_GetCustomUI(StringView) {
    if (OfficeMajor == kOffice2007) return GetRibbonXML(modGlobal::Join(m_c, m_c.host.installFolder, u"Ribbon.xml"));
    if (OfficeMajor < kOffice2010) return {};
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
    std::int32_t monitors = 0;
    Try.Set(monitors, [&] { return m_c.host.monitors.MonitorCount(); });
    if (monitors >= 2) return false;
    return !(monitors == 1 && Try.If([&] {
        const auto current = m_c.host.monitors.CurrentMode(0);
        return current && current->width == m_c.display.g_RcmdResWidth &&
               current->height == m_c.display.g_RcmdResHeight;
    }));
}

void dsrImagePowerPoint::NotesButton(StringView id) {
    struct Entry {
        StringView id;
        void (dsrImagePowerPoint::*run)();
    };
    static constexpr std::array<Entry, 17> kCommands{{
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
    if (!MayRun(id)) return;
    const auto* command =
        std::find_if(kCommands.begin(), kCommands.end(), [&](const Entry& one) { return one.id == id; });
    if (command != kCommands.end()) (this->*command->run)();
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
