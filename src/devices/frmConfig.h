// The preferences, and what a lecture takes of them: photo, webcam, sound quality. Decides what each choice reads as
// when nothing is stored, which choices this system and this lecture can use, and in which order they are stored.
// Without a lecture at hand (no work folder) it is a dialog of preferences alone.
#pragma once

#include <array>

#include "devices/AudioTest.h"

namespace kestrum {

class frmConfig : public ui::Form {
  public:
    explicit frmConfig(const devices::Context& c);

    ui::Frame frameRecording{*this, u"frameRecording"};
    ui::CheckBox chkAutoRecord{*this, u"chkAutoRecord"};
    ui::CheckBox chkSetVolBefRec{*this, u"chkSetVolBefRec"};
    ui::CheckBox chkShowRecStatus{*this, u"chkShowRecStatus"};
    ui::CheckBox chkSldRgnOnly{*this, u"chkSldRgnOnly"};
    ui::CheckBox chkSkipPres{*this, u"chkSkipPres"};
    ui::CheckBox chkStartPen{*this, u"chkStartPen"};
    ui::CheckBox chkEnableHotKey{*this, u"chkEnableHotKey"};
    ui::CheckBox chkShowAfter{*this, u"chkShowAfter"};

    ui::Frame frameRecorder{*this, u"frameRecorder"};
    ui::CheckBox chkEditTitle{*this, u"chkEditTitle"};
    ui::CheckBox chkHideTool{*this, u"chkHideTool"};
    ui::CheckBox chkShowToolBarIndicator{*this, u"chkShowToolBarIndicator"};

    ui::Frame framePicture{*this, u"framePicture"};
    ui::Label lFrameRate{*this, u"lFrameRate"};
    ui::ComboBox cmbFrameRate{*this, u"cmbFrameRate"};
    ui::Label lVideoSize{*this, u"lVideoSize"};
    ui::ComboBox cmbVideoSize{*this, u"cmbVideoSize"};
    ui::CheckBox chkLayeredWin{*this, u"chkLayeredWin"};
    ui::CheckBox chkHardware{*this, u"chkHardware"};
    ui::CheckBox chkCloseAero{*this, u"chkCloseAero"};

    ui::Frame frameSound{*this, u"frameSound"};
    ui::Label lAudioQuality{*this, u"lAudioQuality"};
    ui::ComboBox cmbAudioQuality{*this, u"cmbAudioQuality"};
    ui::Label lAudioUnit{*this, u"lAudioUnit"};
    ui::Label lAudioQualityHelp{*this, u"lAudioQualityHelp"};
    ui::CheckBox chkRecSystemAudio{*this, u"chkRecSystemAudio"};
    ui::CheckBox chkLowVolDetect{*this, u"chkLowVolDetect"};
    ui::CommandButton cmdRecord{*this, u"cmdRecord"};
    ui::CommandButton cmdStopRecord{*this, u"cmdStopRecord"};
    ui::CommandButton cmdPlay{*this, u"cmdPlay"};
    ui::CommandButton cmdStop{*this, u"cmdStop"};
    ui::Label lTimeString{*this, u"lTimeString"};
    ui::Timer tmrGetRecTime{*this, u"tmrGetRecTime", 100};
    ui::Timer tmrGetPlayTime{*this, u"tmrGetPlayTime", 100};

    ui::Frame framePhoto{*this, u"framePhoto"};
    ui::Picture picPhoto{*this, u"picPhoto"};
    ui::Label lPhoto{*this, u"lPhoto"};
    ui::TextBox txtPhoto{*this, u"txtPhoto"};
    ui::CommandButton cmdPhoto{*this, u"cmdPhoto"};

    ui::CommandButton cmdSave{*this, u"cmdSave"};
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    /// A check box that is stored under its own name.
    struct Preference {
        ui::CheckBox* box;
        StringView fallback;
        /// The last system version that knows it; 0 is no limit.
        std::int32_t lastOs;
    };
    /// What the user chose, taken before anything is stored: a box that comes up meanwhile may take the form down.
    struct Choice {
        String photo, videoSize, audioBitrate, frameRate;
        std::array<std::int32_t, 14> checks{};
        bool closesAero = false;
    };

    bool OffersAero() const;
    void ReadChecks();
    void ReadPicture();
    void ReadAudioQuality();
    void ReadPhoto();
    bool HasMicrophone();
    void cmdPhoto_Click();
    void cmdSave_Click();
    Choice TakeChoice() const;
    void StorePhoto(const String& file);
    void StoreVideoSize(const String& size);
    void StoreAudioQuality(const String& bitrate);
    void StoreChecks(const Choice& choice);
    String AeroState(bool closes);
    void Save(StringView key, StringView value);
    String Text(StringView key, StringView text) const;

    devices::Context m_c;
    AudioTest m_test;
    const std::array<Preference, 15> m_preferences;
    /// The photo picked in this dialog; empty until then.
    String m_photo;
    /// Every value has been stored so far.
    bool m_stored = true;
};

}  // namespace kestrum
