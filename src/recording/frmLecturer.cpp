#include "recording/frmLecturer.h"

#include "devices/modVolume.h"
#include "recording/LecturerPlace.h"
#include "recording/RecordingLight.h"
#include "support/IndicatorStyle.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"

namespace kestrum {

namespace {

constexpr std::int32_t kWidth = 420, kHeight = 36;  // pixels
constexpr std::int32_t kSilentLooks = 25;           // five seconds, longer than a pause between two sentences

}  // namespace

frmLecturer::frmLecturer(const recording::Context& c) : Form(c.forms, u"frmLecturer"), m_c(c) {
    SetStyle(support::IndicatorStyle());
    recording::MakeRecordingLight(c, Label1);
    SetLayout(ui::Row({Label1, lState, lTime, InputLevel}));
    tmrLook.onTimer = [this] { tmrLook_Timer(); };
}

void frmLecturer::OnLoad() {
    SetCaption(modLanguage::GetResString(m_c, u"frmLecturer", u"frmLecturer", u"Recording"));
    InputLevel.SetAccessibleName(modLanguage::GetResString(m_c, u"frmLecturer", u"msgLevel", u"Level of the sound"));
    m_silentLooks = 0;
    tmrLook_Timer();
    tmrLook.SetEnabled(true);
}

void frmLecturer::ShowRecording() {
    const auto place = recording::LecturerPlace(m_c, kWidth, kHeight);
    if (!place) return;
    Load();
    SetBounds(place->left, place->top, place->right - place->left, place->bottom - place->top);
    Show();
}

void frmLecturer::tmrLook_Timer() {
    constexpr std::uint32_t kMsPerSecond = 1000;
    const std::int32_t level = m_c.devices.g_AudioLevel;
    m_silentLooks = level <= modVolume::kVolumeThreshold ? m_silentLooks + 1 : 0;
    InputLevel.SetLevel(level);
    lState.SetCaption(StateText());
    const bool runs = m_c.recording.g_EncoderPollTimer != nullptr;
    Label1.SetVisible(runs);
    if (!runs) return;
    const auto elapsed = static_cast<std::uint32_t>(m_c.host.loop.TickCount()) -
                         static_cast<std::uint32_t>(m_c.recording.g_RecordStartTick);
    lTime.SetCaption(modGlobal::SecondsToText(static_cast<std::int32_t>(elapsed / kMsPerSecond)));
}

String frmLecturer::StateText() const {
    if (!m_c.recording.g_EncoderPollTimer) {
        return modLanguage::GetResString(m_c, u"frmLecturer", u"msgFinishing", u"Finishing ...");
    }
    if (m_silentLooks > kSilentLooks) {
        return modLanguage::GetResString(m_c, u"frmLecturer", u"msgNoSound", u"Recording, no sound!");
    }
    return modLanguage::GetResString(m_c, u"frmLecturer", u"msgRecording", u"Recording");
}

}  // namespace kestrum
