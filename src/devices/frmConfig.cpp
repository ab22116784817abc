#include "devices/frmConfig.h"

#include <algorithm>

#include "devices/AudioQuality.h"
#include "devices/PictureSize.h"
#include "devices/modDevice.h"
#include "host/ResumeNext.h"
#include "project/Paths.h"
#include "project/modProject.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {
namespace {

constexpr StringView kSection = u"configure";
constexpr std::array<StringView, 4> kFrameRates = {u"best", u"high", u"medium", u"low"};
constexpr std::size_t kMediumRate = 2;
/// Behind the entry for no webcam at all.
constexpr std::array<StringView, 3> kVideoSizes = {u"160x120", u"240x180", u"320x240"};
constexpr std::array<StringView, 3> kAudioBitrates = {u"32", u"64", u"96"};

/// System versions, as major * 10 + minor.
constexpr std::int32_t kLastWithHardwareSwitch = 52;
constexpr std::int32_t kFirstWithAero = 60, kLastWithAero = 61;
constexpr std::int32_t kFirstWithSystemAudio = 60;
constexpr std::int32_t kEverySystem = 0;

/// The service behind the Aero effect.
constexpr char16_t kAeroService[] = u"UxSms";

template <std::size_t N>
std::int32_t IndexOf(const std::array<StringView, N>& list, StringView value, std::size_t otherwise) {
    const auto found = std::find(list.begin(), list.end(), value);
    return static_cast<std::int32_t>(found == list.end() ? otherwise : static_cast<std::size_t>(found - list.begin()));
}

template <std::size_t N>
String ItemOf(const std::array<StringView, N>& list, std::int32_t index) {
    return index < 0 ? String() : String(list[static_cast<std::size_t>(index)]);
}

}  // namespace

frmConfig::frmConfig(const devices::Context& c)
    : Form(c.forms, u"frmConfig"),
      m_c(c),
      m_test(c, {.cmdRecord = cmdRecord,
                 .cmdStopRecord = cmdStopRecord,
                 .cmdPlay = cmdPlay,
                 .cmdStop = cmdStop,
                 .lTimeString = lTimeString,
                 .tmrGetRecTime = tmrGetRecTime,
                 .tmrGetPlayTime = tmrGetPlayTime,
                 .quality = {&lAudioQuality, &cmbAudioQuality},
                 .others = {&cmdSave, &cmdCancel, &chkLowVolDetect, &chkRecSystemAudio}}),
      m_preferences{{{&chkAutoRecord, u"0", kEverySystem},
                     {&chkShowRecStatus, u"0", kEverySystem},
                     {&chkSkipPres, u"0", kEverySystem},
                     {&chkStartPen, u"0", kEverySystem},
                     {&chkSldRgnOnly, u"1", kEverySystem},
                     {&chkEnableHotKey, u"1", kEverySystem},
                     {&chkShowAfter, u"1", kEverySystem},
                     {&chkEditTitle, u"1", kEverySystem},
                     {&chkHideTool, u"0", kEverySystem},
                     {&chkShowToolBarIndicator, u"0", kEverySystem},
                     {&chkSetVolBefRec, u"1", kEverySystem},
                     {&chkLowVolDetect, u"1", kEverySystem},
                     {&chkHardware, u"0", kLastWithHardwareSwitch},
                     {&chkLayeredWin, u"0", kLastWithAero},
                     {&chkRecSystemAudio, u"0", kEverySystem}}} {
    cmdSave.SetDefault(true);
    cmdCancel.SetCancel(true);
    txtPhoto.SetReadOnly(true);
    picPhoto.SetSize(53, 40);
    m_test.onBeforeRecord = [this] { return HasMicrophone(); };
    cmdPhoto.onClick = [this] { cmdPhoto_Click(); };
    cmdSave.onClick = [this] { cmdSave_Click(); };
    cmdCancel.onClick = [this] { Unload(); };
    SetLayout(ui::Column(
        {ui::Row({ui::Group(frameRecording,
                            {chkAutoRecord, chkSetVolBefRec, chkLowVolDetect, ui::Row({chkShowRecStatus, chkStartPen}),
                             chkSldRgnOnly, chkSkipPres, chkEnableHotKey, chkShowAfter}),
                  ui::Column({ui::Group(framePicture,
                                        {ui::Field(lFrameRate, cmbFrameRate), ui::Field(lVideoSize, cmbVideoSize),
                                         chkLayeredWin, chkHardware, chkCloseAero}),
                              ui::Group(frameSound, {ui::Field(lAudioQuality, cmbAudioQuality, {lAudioUnit}),
                                                     lAudioQualityHelp, chkRecSystemAudio,
                                                     ui::Row({ui::Overlay({cmdRecord, cmdStopRecord}),
                                                              ui::Overlay({cmdPlay, cmdStop}), lTimeString})})})}),
         ui::Group(frameRecorder, {ui::Row({chkEditTitle, chkShowToolBarIndicator}), chkHideTool}),
         ui::Group(framePhoto, {ui::Row({picPhoto, ui::Field(lPhoto, txtPhoto, {cmdPhoto})})}),
         ui::Buttons({cmdSave, cmdCancel})}));
}

bool frmConfig::OffersAero() const {
    return m_c.support.g_OsVersion >= kFirstWithAero && m_c.support.g_OsVersion <= kLastWithAero;
}

String frmConfig::Text(StringView key, StringView text) const {
    return modLanguage::GetResString(m_c, u"frmConfig", key, text);
}

void frmConfig::OnLoad() {
    modLanguage::ApplyLanguage(m_c, *this);
    m_photo.clear();
    m_stored = true;
    m_test.Load();
    ReadChecks();
    ReadPicture();
    ReadAudioQuality();
    ReadPhoto();
    SetFocus(chkAutoRecord);
}

void frmConfig::ReadChecks() {
    for (const Preference& preference : m_preferences) {
        const String stored = modConfig::GetSetting(m_c, kSection, preference.box->Name(), preference.fallback);
        preference.box->SetValue(Val(stored) != 0 ? 1 : 0);
        preference.box->SetVisible(preference.lastOs == kEverySystem || m_c.support.g_OsVersion <= preference.lastOs);
    }
    chkCloseAero.SetVisible(OffersAero());
    chkCloseAero.SetValue(modConfig::GetSetting(m_c, kSection, u"AeroState", u"0") == u"1" ? 1 : 0);
    const bool hearsSystem =
        m_c.support.g_OsVersion >= kFirstWithSystemAudio &&
        host::ResumeNext{m_c.host.trace}.If([this] { return m_c.host.recSystemAudio.CanRecordSystemAudio() > 0; });
    if (hearsSystem) return;
    chkRecSystemAudio.SetValue(0);
    chkRecSystemAudio.SetEnabled(false);
}

void frmConfig::ReadPicture() {
    const std::vector<String> names =
        modGlobal::Split(Text(u"frameRateList", u"best\r\nhigh\r\nmedium\r\nlow"), u"\r\n");
    for (std::size_t i = 0; i < kFrameRates.size(); ++i) {
        cmbFrameRate.AddItem(i < names.size() ? names[i] : String(kFrameRates[i]));
    }
    cmbFrameRate.SetListIndex(
        IndexOf(kFrameRates, modConfig::GetSetting(m_c, kSection, u"frameRateLevel", u"medium"), kMediumRate));
    cmbVideoSize.AddItem(Text(u"msgNoWebcam", u"none"));
    for (const StringView size : kVideoSizes) cmbVideoSize.AddItem(String(size));
    cmbVideoSize.SetListIndex(0);
    cmbVideoSize.SelectText(modConfig::GetSetting(m_c, kSection, u"videoSize", u""));
}

// One quality for all of a lecture's sound: media that is there decides it.
void frmConfig::ReadAudioQuality() {
    for (const StringView bitrate : kAudioBitrates) cmbAudioQuality.AddItem(String(bitrate));
    const bool isFixed = devices::AudioQualityIsFixed(m_c);
    cmbAudioQuality.SetListIndex(IndexOf(kAudioBitrates, devices::AudioBitrate(m_c), 0));
    for (ui::Control* control : std::initializer_list<ui::Control*>{&lAudioQuality, &cmbAudioQuality, &lAudioUnit}) {
        control->SetEnabled(!isFixed);
    }
    lAudioQualityHelp.SetVisible(isFixed);
    lAudioQualityHelp.SetCaption(
        Text(u"msglAudioQualityHelp", u"you cannot set audio quality if project is not empty."));
}

/// Hands the microphone of the preferences to the media library; tells if there is none.
bool frmConfig::HasMicrophone() {
    const bool isThere = modDevice::InitDevices(m_c, true) != modDevice::kNoAudio;
    if (!isThere) modMsgBox::MsgBox(m_c, Text(u"msgNoAudio", u"No microphone can be used."));
    return isThere && IsLoaded();
}

void frmConfig::ReadPhoto() {
    framePhoto.SetVisible(devices::HasLecture(m_c));
    if (!devices::HasLecture(m_c)) return;
    const String photo = project::PhotoFile(m_c);
    if (!m_c.host.fs.FileExists(photo)) return;
    picPhoto.SetFile(photo);
    txtPhoto.SetText(modGlobal::FileNameOf(m_c, photo));
}

void frmConfig::cmdPhoto_Click() {
    const String last = modConfig::GetHexSetting(m_c, kSection, u"photoPath", u"");
    const String filter =
        Text(u"msgPhotoFilter", u"photo") + u" (*.jpg, *.jpeg, *.png, *.gif, *.bmp)|*.jpg;*.jpeg;*.png;*.gif;*.bmp";
    const std::optional<String> picked = m_c.host.fileDialog.OpenFile(
        {Text(u"msgSelectPhoto", u"Select a photo"), filter, modGlobal::FolderOf(m_c, last)});
    if (!IsLoaded() || !picked || !m_c.host.fs.FileExists(*picked)) return;
    m_photo = *picked;
    picPhoto.SetFile(m_photo);
    txtPhoto.SetText(modGlobal::FileNameOf(m_c, m_photo));
    modConfig::SaveHexSetting(m_c, kSection, u"photoPath", m_photo);
}

frmConfig::Choice frmConfig::TakeChoice() const {
    Choice choice;
    choice.photo = m_photo;
    choice.videoSize = ItemOf(kVideoSizes, cmbVideoSize.ListIndex() - 1);
    choice.audioBitrate = ItemOf(kAudioBitrates, cmbAudioQuality.ListIndex());
    choice.frameRate = ItemOf(kFrameRates, cmbFrameRate.ListIndex());
    for (std::size_t i = 0; i < m_preferences.size(); ++i) choice.checks[i] = m_preferences[i].box->Value();
    choice.closesAero = chkCloseAero.Checked();
    return choice;
}

// The order counts: the lecture is whole in its package before the preferences follow.
void frmConfig::cmdSave_Click() {
    const Choice choice = TakeChoice();
    cmdSave.SetEnabled(false);
    StorePhoto(choice.photo);
    StoreVideoSize(choice.videoSize);
    StoreAudioQuality(choice.audioBitrate);
    if (devices::HasLecture(m_c)) modProject::SaveProject(m_c);
    StoreChecks(choice);
    Save(u"frameRateLevel", choice.frameRate);
    if (!m_stored) {
        modMsgBox::MsgBox(
            m_c, Text(u"msgSettingsNotStored", u"The settings cannot be stored. They hold until the program ends."));
    }
    Unload();
}

void frmConfig::StorePhoto(const String& file) {
    if (file.empty() || !devices::HasLecture(m_c)) return;
    const String name = modGlobal::FileNameOf(m_c, file);
    const std::size_t point = name.rfind(u'.');
    const String stored = u"photo." + (point == String::npos ? String() : name.substr(point + 1));
    if (modGlobal::SafeCopyFile(m_c, file, project::InWorkFolder(m_c, stored))) {
        m_c.project.g_Project.photo = stored;
        return;
    }
    const String text = Text(u"msgPhotoError", u"The photo \"%s\" cannot be read. The lecture keeps the one it has.");
    modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", file));
}

void frmConfig::StoreVideoSize(const String& size) {
    Save(u"videoSize", size);
    if (devices::HasLecture(m_c) && !size.empty()) m_c.project.g_Project.videoBitrate = VideoBitrateOf(size);
}

void frmConfig::StoreAudioQuality(const String& bitrate) {
    if (devices::AudioQualityIsFixed(m_c)) return;
    Save(u"audioBitrate", bitrate);
    if (devices::HasLecture(m_c)) m_c.project.g_Project.audioBitrate = bitrate;
}

void frmConfig::StoreChecks(const Choice& choice) {
    for (std::size_t i = 0; i < m_preferences.size(); ++i) {
        Save(m_preferences[i].box->Name(), ToText(choice.checks[i]));
    }
    if (OffersAero()) Save(u"AeroState", AeroState(choice.closesAero));
}

/// "1" once the service was found running and has been ended; a service that rests already is left as noted.
String frmConfig::AeroState(bool closes) {
    if (!closes) return u"0";
    const host::ResumeNext attempt{m_c.host.trace};
    if (m_c.host.processes.ServiceState(kAeroService) != u"Running") {
        return modConfig::GetSetting(m_c, kSection, u"AeroState", u"0");
    }
    return attempt([&] { m_c.host.processes.StopService(kAeroService); }) ? u"1" : u"0";
}

void frmConfig::Save(StringView key, StringView value) {
    if (!modConfig::SaveSetting(m_c, kSection, key, value)) m_stored = false;
}

void frmConfig::OnUnload() {
    m_test.End();
    const String disabled = modConfig::GetSetting(m_c, kSection, chkHardware.Name(), u"0");
    m_c.host.ksLib.SetHardAcceleration(Val(disabled) != 0 ? 1 : 0);
}

}  // namespace kestrum
