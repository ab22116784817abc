// The Record command.
#include "addin/Busy.h"
#include "addin/dsrImagePowerPoint.h"
#include "devices/frmVolSetting.h"
#include "recording/frmTopmost.h"
#include "recording/modViewer.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

bool dsrImagePowerPoint::HasSelectedSlide() {
    return host::ResumeNext(m_c.host.trace).If([&] { return m_c.host.app.SelectedSlides()->Count() > 0; });
}

// The open command works on the project that the recording would replace.
bool dsrImagePowerPoint::IsCommandOpen() {
    if (!CommandBusy) return false;
    modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", u"msgCommandOpen",
                                                     u"Another command of %p is open. Please close it first!"));
    return true;
}

// A press while one is being handled, or while a recording runs, must not reach into the running show.
void dsrImagePowerPoint::DoRecord() {
    if (m_recordBusy || m_c.recording.g_Recording || IsCommandOpen()) return;
    const addin::Busy busy(m_recordBusy);
    try {
        Record();
    } catch (const host::Error& error) {
        m_c.recording.g_Recording = false;
        modViewer::UnloadForm(m_c, u"frmTopmost");
        if (!error.Description().empty()) {
            modMsgBox::MsgBox(m_c, error.Description(), host::BoxButtons::Ok, u"Record");
        }
    }
}

void dsrImagePowerPoint::Record() {
    if (!MayRecord()) return;
    if (onRecordPressed && !onRecordPressed()) return;
    if (!SetVolumeBefore()) return;
    recording::State& r = m_c.recording;
    m_c.support.currentStep = u"Get initial slideIndex";
    r.g_InitialSlide = m_c.host.app.SelectedSlides()->SlideIndex();
    m_c.support.currentStep = u"Start PowerPoint";
    StartShow();
    if (modViewer::IsShowAlive(m_c) && r.g_AbortShow) {
        m_c.host.app.ActivePresentation()->SlideShowSettings()->Run()->View()->Exit();
    }
}

bool dsrImagePowerPoint::MayRecord() {
    auto refuse = [&](StringView key, const String& text) {
        modMsgBox::MsgBox(m_c, modLanguage::GetResString(m_c, u"frmPPT", key, text));
        return false;
    };
    if (modViewer::IsMarkedFinal(m_c, false)) return refuse(u"msgMarkAsFinal", modViewer::kMarkedAsFinal);
    // Several selected slides are refused too: the show could not tell where to start.
    if (!HasSelectedSlide() || m_c.host.app.SelectedSlides()->Count() != 1) {
        return refuse(u"msgNoSlide", u"Please select the one slide at which the recording is to start!");
    }
    return true;
}

// `packagePath` is what the previous command left: whether this presentation's project is fresh is not known yet.
bool dsrImagePowerPoint::SetVolumeBefore() {
    constexpr std::int32_t kCancelled = 2;
    m_c.support.currentStep = u"Show volume setting before recording";
    const String& package = m_c.support.packagePath;
    bool fresh = !m_c.host.fs.FileExists(package) || m_c.host.ksLib.IsEmptyProject(package) != 0;
    if (!fresh || modViewer::Setting(m_c, u"chkSetVolBefRec", u"1") != u"1") return true;
    m_c.devices.g_DialogResult = kCancelled;
    m_c.forms.Get<frmVolSetting>(m_c).ShowModal();
    return m_c.devices.g_DialogResult != kCancelled;
}

void dsrImagePowerPoint::StartShow() {
    constexpr std::int32_t kSpeaker = 1;
    recording::State& r = m_c.recording;
    auto& notice = m_c.forms.Get<frmTopmost>(m_c);
    notice.Show();
    notice.Refresh();
    if (onShowStarts) onShowStarts();
    r.g_RecordRequested = true;
    r.g_AbortShow = false;
    r.g_SavedState = m_c.host.app.ActivePresentation()->Saved();
    auto settings = m_c.host.app.ActivePresentation()->SlideShowSettings();
    settings->SetShowType(kSpeaker);
    settings->Run()->View()->GotoSlide(r.g_InitialSlide, true);
}

}  // namespace kestrum
