#include "addin/Companion.h"

#include "addin/Busy.h"
#include "addin/frmRecorded.h"
#include "devices/ShowMonitor.h"
#include "devices/frmFirstRun.h"
#include "host/ResumeNext.h"
#include "recording/StartAdvice.h"
#include "recording/frmAdvice.h"
#include "recording/frmLecturer.h"
#include "recording/modViewer.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

Companion::Companion(const addin::Context& c, dsrImagePowerPoint& addIn, bool everyShow)
    : m_c(c), m_addIn(addIn), m_everyShow(everyShow) {
    m_addIn.onRecordPressed = [this] { return RecordPressed(); };
    m_addIn.onShowStarts = [this] { ShowStarts(); };
    m_subscription = m_c.host.app.Subscribe(*this);
    m_look = m_c.host.loop.StartTimer(u"companion", recording::SoundRecord::kLookMs, host::TimerReentry::Skipped,
                                      [this] { Look(); });
}

Companion::~Companion() {
    m_addIn.onRecordPressed = nullptr;
    m_addIn.onShowStarts = nullptr;
}

bool Companion::HasCard() const {
    return m_runs || m_publishing || m_c.forms.IsFormLoaded(u"frmRecorded");
}

void Companion::Leave() {
    modViewer::UnloadForm(m_c, u"frmRecorded");
}

// --- before --------------------------------------------------------------------------------------------------------

bool Companion::RecordPressed() {
    modViewer::UnloadForm(m_c, u"frmRecorded");
    m_c.devices.adviceLine.clear();
    if (!PassesFirstRun()) return false;
    host::ResumeNext{m_c.host.trace}(
        [&] { devices::ApplyShowMonitor(m_c, *m_c.host.app.ActivePresentation()->SlideShowSettings()); });
    host::ResumeNext{m_c.host.trace}([&] {
        for (const auto& advice : recording::StartAdvice(m_c, m_c.host.app.ActivePresentation()->FullName())) {
            // For a new recording on a large screen a dialog comes up anyway.
            if (advice.kind == recording::AdviceKind::LargeScreen) continue;
            m_c.devices.adviceLine = advice.line;
            return;
        }
    });
    return true;
}

bool Companion::PassesFirstRun() {
    constexpr std::int32_t kAnswered = 1;
    if (!frmFirstRun::IsDue(m_c)) return true;
    auto& question = m_c.forms.Get<frmFirstRun>(m_c);
    host::ResumeNext{m_c.host.trace}(
        [&] { question.OfferMonitors(m_c.host.app.ActivePresentation()->SlideShowSettings()); });
    question.ShowModal();
    return m_c.devices.g_DialogResult == kAnswered;
}

// The volume dialog may have told it already.
void Companion::ShowStarts() {
    const String line = std::exchange(m_c.devices.adviceLine, {});
    if (!line.empty()) m_c.forms.Get<frmAdvice>(m_c).ShowLine(line);
}

// --- during --------------------------------------------------------------------------------------------------------

void Companion::SlideShowBegin(host::ISlideShowWindow& window) {
    host::ResumeNext{m_c.host.trace}([&] {
        modViewer::UnloadForm(m_c, u"frmRecorded");
        if (!IsUnrecorded(window.Presentation()->FullName())) return;
        m_c.forms.Get<frmAdvice>(m_c).ShowLine(modLanguage::GetResString(
            m_c, u"frmAdvice", u"msgNotRecorded",
            u"This slide show is not being recorded. To record it, end it and choose Record in the Kestrum menu."));
    });
}

bool Companion::IsUnrecorded(const String& fullName) const {
    const recording::State& r = m_c.recording;
    if (r.g_RecordRequested || r.g_Recording || modViewer::IsRecordingLive(m_c)) return false;
    if (modViewer::Setting(m_c, u"chkAutoRecord", u"0") == u"1") return false;
    return m_everyShow || m_c.host.fs.FileExists(modGlobal::PackagePathOf(fullName));
}

void Companion::Look() {
    const recording::State& r = m_c.recording;
    const bool runs = r.g_Recording && r.g_EncoderPollTimer != nullptr;
    if (runs && !m_runs) Began();
    if (runs) m_sound.Add(m_c.devices.g_AudioLevel);
    if (m_runs && !r.g_Recording) Ended();
}

void Companion::Began() {
    m_runs = true;
    m_sound = {};
    m_package = m_c.support.packagePath;
    m_lengthAtStart = m_c.recording.g_MediaLengthAtStart;
    m_c.forms.Get<frmLecturer>(m_c).ShowRecording();
}

// --- after ---------------------------------------------------------------------------------------------------------

void Companion::Ended() {
    m_runs = false;
    if (m_c.recording.faulted || modViewer::Setting(m_c, u"chkShowAfter", u"1") == u"0") return;
    host::ResumeNext{m_c.host.trace}([&] { ShowCard(); });
}

void Companion::ShowCard() {
    RecordedLecture lecture;
    lecture.package = m_package;
    lecture.lengthMs = m_c.host.ksLib.GetLength(m_package);
    lecture.lengthBeforeMs = m_lengthAtStart;
    if (lecture.lengthMs <= m_lengthAtStart) return;
    for (const CIndexItem& item : m_c.project.g_Project.index) {
        if (Val(item.pos) >= m_lengthAtStart) ++lecture.entries;
    }
    lecture.sound = m_sound;
    auto& card = m_c.forms.Get<frmRecorded>(m_c);
    card.onPublish = [this] { Publish(); };
    card.ShowLecture(lecture);
}

// The command works on the presentation in front, which may have changed since.
void Companion::Publish() {
    host::ResumeNext Try(m_c.host.trace);
    const bool inFront =
        Try.If([&] { return modGlobal::PackagePathOf(m_c.host.app.ActivePresentation()->FullName()) == m_package; });
    if (!inFront) {
        const String text = modLanguage::GetResString(m_c, u"frmRecorded", u"msgNotInFront",
                                                      u"Open the presentation \"%s\" first, then publish it.");
        modMsgBox::MsgBox(m_c, modGlobal::Replace(text, u"%s", modGlobal::FileNameOf(m_c, m_package)));
        return;
    }
    const addin::Busy publishing(m_publishing);
    Try([&] { m_addIn.NotesButton(u"mnuMP4"); });
}

}  // namespace kestrum
