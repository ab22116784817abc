#include "devices/frmDevice.h"

#include <array>

#include "devices/AudioQuality.h"
#include "devices/PictureSize.h"
#include "host/ResumeNext.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {
namespace {

constexpr StringView kSection = u"configure";
constexpr std::array<StringView, 3> kVideoSizes = {u"160x120", u"240x180", u"320x240"};
constexpr StringView kPreviewSize = u"240x180";
/// System versions, as major * 10 + minor.
constexpr std::int32_t kFirstWithSystemAudio = 60;
constexpr std::int32_t kHighestStep = 10;

}  // namespace

frmDevice::frmDevice(const devices::Context& c)
    : Form(c.forms, u"frmDevice"),
      m_c(c),
      m_test(c, {.cmdRecord = cmdRecord,
                 .cmdStopRecord = cmdStopRecord,
                 .cmdPlay = cmdPlay,
                 .cmdStop = cmdStop,
                 .lTimeString = lTimeString,
                 .tmrGetRecTime = tmrGetRecTime,
                 .tmrGetPlayTime = tmrGetPlayTime,
                 .quality = {&lAudioQuality, &cmbAudioQuality},
                 .others = {&cmdSave, &cmdCancel, &cmdRefresh, &chkLowVolDetect, &cmbAudioDevice, &chkRecSystemAudio,
                            &Check1_0, &Check1_1}}) {
    ConnectHandlers();
    Arrange();
    cmdSave.SetDefault(true);
    cmdCancel.SetCancel(true);
    SldVolLevel.SetRange(0, kHighestStep);
    lVideoMsg.SetTextAlignment(ui::Alignment::Centre);
    // Until the devices have been looked at there is nothing to save and nothing to hear.
    for (ui::Control* closed : std::initializer_list<ui::Control*>{&cmdSave, &cmdRecord, &SldVolLevel}) {
        closed->SetEnabled(false);
    }
    for (ui::Control* hidden : std::initializer_list<ui::Control*>{&picDeviceChecking, &lDeviceChecking, &lVolumeMsg,
                                                                   &lAudioQualityHelp, &Check1_0, &Check1_1}) {
        hidden->SetVisible(false);
    }
}

void frmDevice::ConnectHandlers() {
    tmrInitDevice.onTimer = [this] { tmrInitDevice_Timer(); };
    tmrGetVol.onTimer = [this] { tmrGetVol_Timer(); };
    chkVideo.onClick = [this] { chkVideo_Click(); };
    cmbVideoDevice.onClick = [this] { cmdRefresh_Click(); };
    cmbVideoSize.onClick = [this] { cmbVideoSize_Click(); };
    cmbAudioDevice.onClick = [this] { cmbAudioDevice_Click(); };
    SldVolLevel.onChange = [this] { m_c.host.ksLib.SetVolumeScale(SldVolLevel.Value()); };
    Check1_0.onClick = [this] { m_c.host.ksLib.MixerSet(0, Check1_0.Value()); };
    Check1_1.onClick = [this] { m_c.host.ksLib.MixerSet(1, Check1_1.Value()); };
    lAudioQualityHelp.onMouseMove = [this] { lAudioQualityHelp_MouseMove(); };
    cmdRefresh.onClick = [this] { cmdRefresh_Click(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdCancel.onClick = [this] { Unload(); };
}

void frmDevice::Arrange() {
    using namespace ui;
    SetLayout(Column(
        {ui::Row({Group(frameVideo, {chkVideo, Field(lCamera, cmbVideoDevice), Field(lVideoSize, cmbVideoSize),
                                     Overlay({picVideo, lVideoMsg}), Stretch()}),
                  Column({Group(frameAudio, {Field(lMicrophone, cmbAudioDevice), Field(lInputLevel, InputLevel),
                                             Field(lVolume, SldVolLevel), lVolumeMsg, ui::Row({Check1_0, Check1_1}),
                                             Field(lAudioQuality, cmbAudioQuality), lAudioQualityHelp,
                                             chkRecSystemAudio, chkLowVolDetect}),
                          Group(frameTest, {ui::Row({Overlay({cmdRecord, cmdStopRecord}), Overlay({cmdPlay, cmdStop}),
                                                     lTimeString})}),
                          Stretch()})}),
         ui::Row({cmdRefresh, picDeviceChecking, lDeviceChecking, Stretch(), cmdSave, cmdCancel})}));
}

String frmDevice::Text(StringView key, StringView text) const {
    return modLanguage::GetResString(m_c, u"frmDevice", key, text);
}

void frmDevice::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_dvTold = m_isRefreshing = m_audioChanged = m_hasCamera = m_isDv = false;
    m_test.Load();
    for (const String& quality : modGlobal::Split(Text(u"audioQualityList", u"best\r\ngood\r\nnormal"), u"\r\n")) {
        cmbAudioQuality.AddItem(quality);
    }
    SetFocus(cmbAudioDevice);
    tmrInitDevice.SetEnabled(true);
}

void frmDevice::tmrInitDevice_Timer() {
    tmrInitDevice.SetEnabled(false);
    m_audio = {modConfig::GetSetting(m_c, kSection, u"audioDevice", u""), u""};
    m_video = {modConfig::GetSetting(m_c, kSection, u"videoDevice", u""), u""};
    ReadVideoSize();
    RefreshDevices();
    if (!IsLoaded()) return;  // closed while a box was up
    chkLowVolDetect.SetValue(Val(modConfig::GetSetting(m_c, kSection, chkLowVolDetect.Name(), u"1")) != 0 ? 1 : 0);
    ReadSystemAudio();
    ReadAudioQuality();
}

// A size that was never saved, or is none of the list, means no webcam.
void frmDevice::ReadVideoSize() {
    for (const StringView size : kVideoSizes) cmbVideoSize.AddItem(String(size));
    const String saved = modConfig::GetSetting(m_c, kSection, u"videoSize", u"");
    chkVideo.SetValue(cmbVideoSize.SelectText(saved) ? 1 : 0);
    const PictureSize size = ParsePictureSize(chkVideo.Checked() ? saved : kPreviewSize);
    picVideo.SetSize(size.width, size.height);
    FollowVideoChoice();
}

void frmDevice::ReadSystemAudio() {
    const bool hearsSystem =
        m_c.support.g_OsVersion >= kFirstWithSystemAudio &&
        host::ResumeNext{m_c.host.trace}.If([this] { return m_c.host.recSystemAudio.CanRecordSystemAudio() > 0; });
    if (hearsSystem) {
        const String saved = modConfig::GetSetting(m_c, kSection, chkRecSystemAudio.Name(), u"0");
        chkRecSystemAudio.SetValue(Val(saved) != 0 ? 1 : 0);
        return;
    }
    chkRecSystemAudio.SetValue(0);
    chkRecSystemAudio.SetEnabled(false);
    modConfig::SaveSetting(m_c, kSection, chkRecSystemAudio.Name(), u"0");
}

void frmDevice::ReadAudioQuality() {
    const bool isFixed = devices::AudioQualityIsFixed(m_c);
    lAudioQuality.SetEnabled(!isFixed);
    cmbAudioQuality.SetEnabled(!isFixed);
    lAudioQualityHelp.SetVisible(isFixed);
    lAudioQualityHelp.SetCaption(modLanguage::GetResString(m_c, u"frmConfig", u"msglAudioQualityHelp",
                                                           u"you cannot set audio quality if project is not empty."));
    const String bitrate = devices::AudioBitrate(m_c);
    const std::int32_t entry = bitrate == u"96" ? 0 : bitrate == u"64" ? 1 : 2;
    if (entry < static_cast<std::int32_t>(cmbAudioQuality.Items().size())) cmbAudioQuality.SetListIndex(entry);
}

void frmDevice::lAudioQualityHelp_MouseMove() {
    lAudioQualityHelp.SetToolTip(modLanguage::GetResString(m_c, u"frmConfig", u"msglAudioQualityHelp",
                                                           u"Cannot set audio quality if project is not empty."));
}

void frmDevice::tmrGetVol_Timer() {
    InputLevel.SetLevel(m_c.host.ksLib.GetAudioVolume());
}

// A camera that is switched on for the first time shows at the size of the preview.
void frmDevice::chkVideo_Click() {
    FollowVideoChoice();
    if (!chkVideo.Checked()) {
        ShowVideoIsOff();
        return;
    }
    if (cmbVideoSize.ListIndex() < 0) cmbVideoSize.SelectText(kPreviewSize);
    ShowVideoMessage(Text(u"lInitVideo", u"Initializing video device ..."));
    cmdRefresh_Click();
}

void frmDevice::cmbVideoSize_Click() {
    if (cmbVideoSize.Text().empty()) return;
    const PictureSize size = ParsePictureSize(cmbVideoSize.Text());
    picVideo.SetSize(size.width, size.height);
    Refresh();
    m_test.End();
    m_c.host.ksLib.CloseAVDevice();
    OpenDevices();
}

void frmDevice::cmbAudioDevice_Click() {
    m_audioChanged = true;
    cmdRefresh_Click();
}

void frmDevice::cmdRefresh_Click() {
    if (m_isRefreshing) return;
    m_test.End();
    lDeviceChecking.SetCaption(Text(u"lDeviceRefresh", u"Refreshing Device ..."));
    m_audio.name = cmbAudioDevice.Text();
    m_video.name = cmbVideoDevice.Text();
    m_c.host.ksLib.CloseAVDevice();
    RefreshDevices();
}

void frmDevice::OnUnload() {
    m_test.End();
    tmrGetRecTime.SetEnabled(false);
    tmrGetPlayTime.SetEnabled(false);
    tmrGetVol.SetEnabled(false);
    m_c.host.ksLib.CloseAVDevice();
}

}  // namespace kestrum
