// Which camera and which microphone record, and how good their sound is. Decides how the devices are opened to be
// looked at and listened to, what a failure of each of them leaves usable, and what a choice means for the lecture at
// hand. Without a lecture it sets the preferences alone. No failure ends the dialog; it can be cancelled at any time.
#pragma once

#include "devices/AudioTest.h"
#include "devices/modDevice.h"

namespace kestrum {

class frmDevice : public ui::Form {
  public:
    explicit frmDevice(const devices::Context& c);

    ui::Frame frameVideo{*this, u"frameVideo"};
    ui::CheckBox chkVideo{*this, u"chkVideo"};
    ui::Label lCamera{*this, u"lCamera"};
    ui::ComboBox cmbVideoDevice{*this, u"cmbVideoDevice"};
    ui::Label lVideoSize{*this, u"lVideoSize"};
    ui::ComboBox cmbVideoSize{*this, u"cmbVideoSize"};
    ui::Picture picVideo{*this, u"picVideo"};
    ui::Label lVideoMsg{*this, u"lVideoMsg"};

    ui::Frame frameAudio{*this, u"frameAudio"};
    ui::Label lMicrophone{*this, u"lMicrophone"};
    ui::ComboBox cmbAudioDevice{*this, u"cmbAudioDevice"};
    ui::Label lInputLevel{*this, u"lInputLevel"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::Label lVolume{*this, u"lVolume"};
    ui::Slider SldVolLevel{*this, u"SldVolLevel"};
    ui::Label lVolumeMsg{*this, u"lVolumeMsg"};
    ui::CheckBox Check1_0{*this, u"Check1", 0};
    ui::CheckBox Check1_1{*this, u"Check1", 1};
    ui::Label lAudioQuality{*this, u"lAudioQuality"};
    ui::ComboBox cmbAudioQuality{*this, u"cmbAudioQuality"};
    ui::Label lAudioQualityHelp{*this, u"lAudioQualityHelp"};
    ui::CheckBox chkRecSystemAudio{*this, u"chkRecSystemAudio"};
    ui::CheckBox chkLowVolDetect{*this, u"chkLowVolDetect"};

    ui::Frame frameTest{*this, u"frameTest"};
    ui::CommandButton cmdRecord{*this, u"cmdRecord"};
    ui::CommandButton cmdStopRecord{*this, u"cmdStopRecord"};
    ui::CommandButton cmdPlay{*this, u"cmdPlay"};
    ui::CommandButton cmdStop{*this, u"cmdStop"};
    ui::Label lTimeString{*this, u"lTimeString"};

    ui::CommandButton cmdRefresh{*this, u"cmdRefresh"};
    ui::Picture picDeviceChecking{*this, u"picDeviceChecking"};
    ui::Label lDeviceChecking{*this, u"lDeviceChecking"};
    ui::CommandButton cmdSave{*this, u"cmdSave"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};

    ui::Timer tmrInitDevice{*this, u"tmrInitDevice", 100};
    ui::Timer tmrGetVol{*this, u"tmrGetVol", 200};
    ui::Timer tmrGetRecTime{*this, u"tmrGetRecTime", 100};
    ui::Timer tmrGetPlayTime{*this, u"tmrGetPlayTime", 100};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    // The form.
    void ConnectHandlers();
    void Arrange();
    void tmrInitDevice_Timer();
    void tmrGetVol_Timer();
    void chkVideo_Click();
    void cmbVideoSize_Click();
    void cmbAudioDevice_Click();
    void cmdRefresh_Click();
    void lAudioQualityHelp_MouseMove();
    void ReadVideoSize();
    void ReadSystemAudio();
    void ReadAudioQuality();

    // The devices (frmDeviceRefresh.cpp).
    void RefreshDevices();
    bool LookAtDevices();
    bool ChooseDevices();
    bool FillVideoDevices(const modDevice::DeviceList& list);
    void FillAudioDevices(const modDevice::DeviceList& list);
    void FillNone(ui::ComboBox& list);
    void EnableVolume(bool enabled);
    void FollowVideoChoice();
    void ShowVideoMessage(const String& text);
    void ShowVideoIsOff();
    void ShowVideoFailed();
    bool OpenAfterAudioChange();
    bool OpenDevices();
    std::int32_t CheckAVDevice();
    void TakeOpened(std::int32_t result);
    void ReadVolume();

    // What is kept (frmDeviceSave.cpp).
    void cmdSave_Click();
    void Store();
    void StoreVideo();
    void Save(StringView key, StringView value);

    String Text(StringView key, StringView text) const;

    devices::Context m_c;
    AudioTest m_test;
    /// The choice that was handed to the media library; before that, what was saved.
    modDevice::DeviceRecord m_video, m_audio;
    bool m_hasCamera = false;
    /// The camera is a camcorder: it brings its own sound.
    bool m_isDv = false;
    bool m_dvTold = false;
    bool m_isRefreshing = false;
    /// The refresh under way follows a change in cmbAudioDevice.
    bool m_audioChanged = false;
};

}  // namespace kestrum
