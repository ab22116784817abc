// How frmDevice finds, fills in and opens the devices.
#include "devices/frmDevice.h"
#include "devices/modVolume.h"
#include "support/modConfig.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

/// Answers of CheckAVDevice.
constexpr std::int32_t kNoAudio = -1;
constexpr std::int32_t kVideoFailed = 1;
constexpr std::int32_t kOpenedKeepSize = 2;

bool HasDevices(const modDevice::DeviceList& list) {
    return !list.empty() && !list.front().name.empty();
}

void Fill(ui::ComboBox& box, const modDevice::DeviceList& list, const String& chosen) {
    box.Clear();
    for (const modDevice::DeviceRecord& device : list) box.AddItem(device.name);
    box.SelectText(chosen);
}

}  // namespace

// A box may come up on the way: then the user may close the dialog, and nothing is opened any more.
void frmDevice::RefreshDevices() {
    m_isRefreshing = true;
    picDeviceChecking.SetVisible(true);
    lDeviceChecking.SetVisible(true);
    Refresh();
    const bool work = LookAtDevices();
    m_isRefreshing = m_audioChanged = false;
    if (!IsLoaded()) return;
    if (!work && chkVideo.Checked()) ShowVideoFailed();
    picDeviceChecking.SetVisible(false);
    lDeviceChecking.SetVisible(false);
}

/// False if the microphone cannot be used, or the dialog was closed meanwhile.
bool frmDevice::LookAtDevices() {
    tmrGetVol.SetEnabled(false);
    InputLevel.SetLevel(0);
    EnableVolume(false);
    cmdSave.SetEnabled(false);
    cmdRecord.SetEnabled(false);
    if (m_c.host.ksLib.ksResetAVDevice() == 0) {
        modMsgBox::MsgBox(m_c, u"ResetAVDevice Error!");
        return false;
    }
    if (!ChooseDevices()) return false;
    if (!(m_audioChanged ? OpenAfterAudioChange() : OpenDevices())) return false;
    if (!chkVideo.Checked() && m_hasCamera) ShowVideoIsOff();
    ReadVolume();
    for (ui::CheckBox* box : {&Check1_0, &Check1_1}) box->SetVisible(false);
    modVolume::FillMixerSwitches(m_c, m_c.host.ksLib.CreateAudioMixer(), {&Check1_0, &Check1_1});
    return true;
}

/// False if the dialog was closed meanwhile.
bool frmDevice::ChooseDevices() {
    modDevice::DeviceList audio, video;
    modDevice::QueryDevices(m_c, audio, u"audio");
    modDevice::QueryDevices(m_c, video, u"video");
    modDevice::SelectDevices(m_c, false, false, m_video, m_audio, video, audio);
    if (!IsLoaded() || !FillVideoDevices(video)) return false;
    FillAudioDevices(audio);
    return true;
}

/// False if the dialog was closed meanwhile.
bool frmDevice::FillVideoDevices(const modDevice::DeviceList& list) {
    m_hasCamera = HasDevices(list);
    m_isDv = m_hasCamera && m_video.kind == u"DV";
    if (m_isDv) {
        Fill(cmbVideoDevice, {m_video}, m_video.name);
    } else if (m_hasCamera) {
        Fill(cmbVideoDevice, list, m_video.name);
    } else {
        FillNone(cmbVideoDevice);
        chkVideo.SetValue(0);
        ShowVideoMessage(Text(u"msgNoVideoDevice", u"No video device"));
    }
    chkVideo.SetEnabled(m_hasCamera);
    FollowVideoChoice();
    if (m_isDv && !std::exchange(m_dvTold, true)) {
        modMsgBox::MsgBox(m_c, Text(u"msgDvExists", u"A DV camera is connected. Its picture and sound are recorded."));
    }
    return IsLoaded();
}

void frmDevice::FillAudioDevices(const modDevice::DeviceList& list) {
    if (m_isDv || !HasDevices(list)) {
        FillNone(cmbAudioDevice);
    } else {
        Fill(cmbAudioDevice, list, m_audio.name);
    }
}

void frmDevice::FillNone(ui::ComboBox& list) {
    list.Clear();
    list.AddItem(Text(u"msgNone", u"(None)"));
    list.SetListIndex(0);
}

void frmDevice::EnableVolume(bool enabled) {
    for (ui::Control* control : std::initializer_list<ui::Control*>{&lVolume, &SldVolLevel, &Check1_0, &Check1_1}) {
        control->SetEnabled(enabled);
    }
    lVolumeMsg.SetVisible(false);
}

/// What can be chosen of the camera while it is switched on, or off.
void frmDevice::FollowVideoChoice() {
    const bool isOn = chkVideo.Checked();
    for (ui::Control* control : std::initializer_list<ui::Control*>{&lCamera, &lVideoSize, &cmbVideoSize, &picVideo}) {
        control->SetEnabled(isOn);
    }
    cmbVideoDevice.SetEnabled(isOn && !m_isDv);
}

/// The text stands where the picture would.
void frmDevice::ShowVideoMessage(const String& text) {
    lVideoMsg.SetCaption(text);
    lVideoMsg.SetVisible(!text.empty());
    picVideo.SetVisible(text.empty());
}

void frmDevice::ShowVideoIsOff() {
    ShowVideoMessage(Text(u"msgVideoDeviceNotEnabled", u"Video device not enabled"));
}

void frmDevice::ShowVideoFailed() {
    ShowVideoMessage(Text(u"msgFailToOpenVideoDevice", u"Fail to open video device"));
}

/// A camera that is switched off is not opened; a camcorder is, for its sound.
std::int32_t frmDevice::CheckAVDevice() {
    const String camera = chkVideo.Checked() || m_isDv ? m_video.name : String();
    return m_c.host.ksLib.CheckAVDevice(picVideo.Surface(), picVideo.Width(), picVideo.Height(), camera);
}

bool frmDevice::OpenAfterAudioChange() {
    const std::int32_t result = CheckAVDevice();
    if (result != kNoAudio) {
        TakeOpened(result);
        return true;
    }
    const String text = m_c.support.projectSource == u"PPT"
                            ? Text(u"msgDeviceLockedForPPT", u"The device is used by another program.")
                            : Text(u"msgDeviceLocked", u"The device is used by another program.");
    m_c.devices.deviceLocked = true;
    modMsgBox::MsgBox(m_c, text);
    return false;
}

/// Tries a second time with the microphone set anew. False, after telling so, if it cannot be opened.
bool frmDevice::OpenDevices() {
    std::int32_t result = CheckAVDevice();
    if (result == kNoAudio) {
        m_c.host.ksLib.ksResetAVDevice();
        if (!m_audio.name.empty()) m_c.host.ksLib.ksSetAudioDevice(m_audio.name);
        result = CheckAVDevice();
    }
    if (result != kNoAudio) {
        TakeOpened(result);
        return true;
    }
    cmdSave.SetEnabled(false);
    cmdRecord.SetEnabled(false);
    modMsgBox::MsgBox(m_c, Text(u"msgNoAudio", u"No microphone can be opened."));
    return false;
}

/// The microphone works; perhaps the camera does not, and a lecture can be recorded without it.
void frmDevice::TakeOpened(std::int32_t result) {
    m_c.devices.deviceLocked = false;
    if (result == kVideoFailed) {
        ShowVideoFailed();
    } else if (chkVideo.Checked()) {
        ShowVideoMessage({});
    }
    if (result == kOpenedKeepSize) modConfig::SaveSetting(m_c, u"configure", u"videoSize", cmbVideoSize.Text());
    EnableVolume(true);
    cmdSave.SetEnabled(true);
    cmdRecord.SetEnabled(true);
}

void frmDevice::ReadVolume() {
    const std::int32_t step = m_c.host.ksLib.GetVolumeScale();
    if (step < 0 || !modVolume::ProbeVolume(m_c, step)) {
        lVolumeMsg.SetCaption(Text(u"msgGetVolumeError", u"The volume of this microphone cannot be set."));
        lVolumeMsg.SetVisible(true);
        SldVolLevel.SetEnabled(false);
        return;
    }
    SldVolLevel.SetValue(step);
    SldVolLevel.SetEnabled(true);
    tmrGetVol.SetEnabled(true);
}

}  // namespace kestrum
