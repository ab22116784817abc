#include "devices/frmFirstRun.h"

#include <utility>

#include "devices/ShowMonitor.h"
#include "host/ResumeNext.h"
#include "support/Numbers.h"
#include "support/modConfig.h"
#include "support/modLanguage.h"

namespace kestrum {
namespace {

constexpr StringView kConfigure = u"configure", kDone = u"firstRunDone", kMicrophone = u"audioDevice";
constexpr std::int32_t kAnswered = 1, kCancelled = 2;

}  // namespace

bool frmFirstRun::IsDue(const devices::Context& c) {
    return modConfig::GetSetting(c, kConfigure, kDone, u"").empty() &&
           modConfig::GetSetting(c, kConfigure, kMicrophone, u"").empty();
}

frmFirstRun::frmFirstRun(const devices::Context& c) : Form(c.forms, u"frmFirstRun"), m_c(c) {
    cmdSave.SetDefault(true);
    cmdSkip.SetCancel(true);
    lNote.SetVisible(false);
    lMonitor.SetVisible(false);
    cmbMonitor.SetVisible(false);
    cmdSave.onClick = [this] { Answer(true); };
    cmdSkip.onClick = [this] { Answer(false); };
    cmbAudioDevice.onClick = [this] { Listen(); };
    tmrInitDevice.onTimer = [this] { tmrInitDevice_Timer(); };
    tmrGetVol.onTimer = [this] { InputLevel.SetLevel(m_c.host.ksLib.GetAudioVolume()); };
    SetLayout(ui::Column({lMsg, ui::Field(lMicrophone, cmbAudioDevice), ui::Field(lInputLevel, InputLevel), lNote,
                          ui::Field(lMonitor, cmbMonitor), ui::Buttons({cmdSave, cmdSkip})}));
}

void frmFirstRun::OfferMonitors(std::unique_ptr<host::ISlideShowSettings> shows) {
    const auto monitors = m_c.host.monitors.Handles();
    if (monitors.size() < 2) return;
    const std::int32_t chosen = shows->ShowMonitor();
    cmbMonitor.AddItem(Text(u"msgAutomatic", u"Automatic"));
    for (const host::MonitorHandle monitor : monitors) cmbMonitor.AddItem(NameOf(monitor));
    cmbMonitor.SetListIndex(chosen >= 0 && chosen <= std::ssize(monitors) ? chosen : 0);
    lMonitor.SetVisible(true);
    cmbMonitor.SetVisible(true);
    m_shows = std::move(shows);
}

String frmFirstRun::NameOf(host::MonitorHandle monitor) const {
    const String name = m_c.host.monitors.MonitorName(monitor);
    const auto mode = m_c.host.monitors.CurrentMode(monitor);
    if (!mode) return name;
    return name + u" (" + ToText(mode->width) + u"x" + ToText(mode->height) + u")";
}

void frmFirstRun::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    SetStyle({.topmost = true});
    m_c.devices.g_DialogResult = kCancelled;
    tmrInitDevice.SetEnabled(true);
}

// The window is on screen first: devices take their time.
void frmFirstRun::tmrInitDevice_Timer() {
    tmrInitDevice.SetEnabled(false);
    FillMicrophones();
    Listen();
}

void frmFirstRun::FillMicrophones() {
    modDevice::DeviceList list;
    modDevice::QueryDevices(m_c, list, u"audio");
    for (const modDevice::DeviceRecord& device : list) {
        if (!device.name.empty()) cmbAudioDevice.AddItem(device.name);
    }
    const bool any = !cmbAudioDevice.Items().empty();
    if (any) cmbAudioDevice.SetListIndex(0);
    cmbAudioDevice.SetEnabled(any);
    if (any) return;
    lNote.SetCaption(Text(u"msgNone", u"No microphone is connected. Connect one before you record."));
    lNote.SetVisible(true);
}

void frmFirstRun::Listen() {
    tmrGetVol.SetEnabled(false);
    InputLevel.SetLevel(0);
    host::IKsLib& library = m_c.host.ksLib;
    library.CloseAVDevice();
    if (cmbAudioDevice.Text().empty()) return;
    const bool opened =
        library.ksSetAudioDevice(cmbAudioDevice.Text()) != 0 &&
        library.CheckAVDevice(Window(), 0, 0, {}) != modDevice::kNoAudio;  // no camera: the dialog shows none
    lNote.SetCaption(Text(u"msgInUse", u"This microphone cannot be opened; another program may be using it."));
    lNote.SetVisible(!opened);
    tmrGetVol.SetEnabled(opened);
}

void frmFirstRun::Answer(bool keep) {
    m_c.devices.g_DialogResult = kAnswered;
    if (keep && !cmbAudioDevice.Text().empty()) {
        modConfig::SaveSetting(m_c, kConfigure, kMicrophone, cmbAudioDevice.Text());
    }
    if (keep && m_shows) KeepMonitor();
    modConfig::SaveSetting(m_c, kConfigure, kDone, u"1");
    Unload();
}

// A host that does not take it shows the slides where it did before.
void frmFirstRun::KeepMonitor() {
    host::ResumeNext{m_c.host.trace}([&] { devices::KeepShowMonitor(m_c, *m_shows, cmbMonitor.ListIndex()); });
}

void frmFirstRun::OnUnload() {
    tmrGetVol.SetEnabled(false);
    m_c.host.ksLib.CloseAVDevice();
}

String frmFirstRun::Text(StringView key, const String& fallback) const {
    return modLanguage::GetResString(m_c, u"frmFirstRun", key, fallback);
}

}  // namespace kestrum
