// From the first slide's event to the running encoder.
#include "devices/modVolume.h"
#include "project/RecentProjects.h"
#include "project/modProject.h"
#include "project/modSlide.h"
#include "recording/frmNotice.h"
#include "recording/frmRecStatus.h"
#include "recording/frmViewer.h"
#include "recording/modCapture.h"
#include "recording/modEncoder.h"
#include "recording/modViewer.h"
#include "support/frmStatus.h"
#include "support/modConfig.h"
#include "support/modExec.h"
#include "support/modGlobal.h"
#include "support/modLanguage.h"
#include "support/modMsgBox.h"

namespace kestrum {

namespace {

const String kReEntry =
    u"Another recording is in progress, or the project is open in another program. Please end it first!";

void ShowText(const recording::Context& c, StringView section, StringView key, const String& text) {
    modMsgBox::MsgBox(c, modLanguage::GetResString(c, section, key, text));
}

bool ShowsRecStatus(const recording::Context& c) {
    return modViewer::Setting(c, u"chkShowRecStatus", u"0") == u"1";
}

}  // namespace

// Another recording in PowerPoint is live, or the sibling recorder has a project open.
static bool IsTakenElsewhere(const recording::Context& c) {
    if (modViewer::IsRecordingLive(c)) return true;
    return host::ResumeNext(c.host.trace).If([&] {
        return !modConfig::GetSetting(c, modGlobal::kLarkspinTokens, u"project", u"").empty() &&
               modGlobal::IsTokenFresh(c, u"Larkspin");
    });
}

void frmViewer::PrepareAndRecord() {
    recording::State& r = m_c.recording;
    const std::int32_t show = r.showNumber;
    r.g_PrepareStarted = true;
    if (r.g_RecordRequested) {
        modViewer::UnloadForm(m_c, u"frmTopmost");
        m_c.host.loop.DoEvents();
    }
    if (!modViewer::IsShowAlive(m_c)) {
        if (r.g_RecordRequested) r.g_AbortShow = true;
        return modViewer::RestoreSaved(m_c);
    }
    if (StartIsRefused()) return FailStart();
    bool ready = BeforeRecord();
    // A dialog may have outlived the show, and another may run by now: that one is not ours to record or to end.
    if (show != r.showNumber) return UndoStart(Masks::IfLoaded);
    if (!ready || !StartPowerPointRecord()) return FailStart();
    if (ShowsRecStatus(m_c)) ShowRunningTime();
    Try([&] { r.g_ShowWindow->Activate(); });
}

// Takes the place of the red light; painted before the host is asked anything more, which takes its time.
void frmViewer::ShowRunningTime() {
    auto& clock = m_c.forms.Get<frmRecStatus>(m_c);
    clock.Show();
    clock.Refresh();
    modViewer::UnloadForm(m_c, u"frmRecDot");
}

bool frmViewer::StartIsRefused() {
    if (modViewer::IsMarkedFinal(m_c, true)) {
        ShowText(m_c, u"frmPPT", u"msgMarkAsFinal", modViewer::kMarkedAsFinal);
        return true;
    }
    if (IsTakenElsewhere(m_c)) {
        ShowText(m_c, u"frmCommon", u"reEntryDll", kReEntry);
        return true;
    }
    return false;
}

// The user never stands in a show that looks like a recording and is none: whatever started it, it ends.
void frmViewer::FailStart() {
    m_c.recording.g_AbortShow = true;
    if (modViewer::IsShowAlive(m_c)) Try([&] { modViewer::ExitSlideShow(m_c); });
    UndoStart(Masks::IfLoaded);
    modViewer::RestoreSaved(m_c);
}

void frmViewer::UndoStart(Masks masks) {
    bool unload = masks == Masks::ByRegion ? modViewer::RegionIsSmaller(m_c) : m_c.forms.IsFormLoaded(u"frmMask1");
    if (unload) modViewer::UnloadMasks(m_c);
    modViewer::UnloadForm(m_c, u"frmStatus");
    if (masks == Masks::IfLoaded && !m_c.recording.g_Recording) modProject::DeleteWorkFolder(m_c);
}

bool frmViewer::BeforeRecord() {
    if (!Try.If([&] { return modProject::LocateProject(m_c); })) return false;
    Try([&] { modProject::WarnDriveType(m_c, m_c.support.packageFolder); });
    if (!Try.If([&] { return modCapture::CheckMaxSize(m_c, 0); })) return false;
    if (Try.If([&] { return modProject::IsEditingElsewhere(m_c); })) return false;
    if (!Try.If([&] {
            const auto& window = m_c.recording.g_ShowWindow;
            return modCapture::CheckCaptureRegion(m_c, window->Left(), window->Top());
        })) {
        return false;
    }
    const String& package = m_c.support.packagePath;
    bool fresh = !(m_c.host.fs.FileExists(package) && m_c.host.ksLib.IsEmptyProject(package) == 0);
    bool continued = false;
    if (!Try.If([&] { return modProject::OpenProject(m_c, fresh, continued); })) {
        if (modViewer::RegionIsSmaller(m_c)) modViewer::UnloadMasks(m_c);
        return false;
    }
    if (continued &&
        modMsgBox::MsgBox(m_c, u"Continue Recording?", host::BoxButtons::OkCancel, u"") != host::BoxAnswer::Ok) {
        return false;
    }
    Try([&] { m_c.recording.g_Presentation = PptApp->ActivePresentation(); });
    return true;
}

bool frmViewer::StartPowerPointRecord() {
    recording::State& r = m_c.recording;
    m_c.forms.Get<frmStatus>(m_c).ShowText(
        modLanguage::GetResString(m_c, u"frmCommon", u"msgPrepareRecord", u"Preparing to record ..."));
    if (!InstallViewerHook()) {
        modViewer::UnloadForm(m_c, u"frmStatus");
        ShowText(m_c, u"frmCommon", u"reEntryDll", kReEntry);
        if (ShowsRecStatus(m_c)) modViewer::UnloadForm(m_c, u"frmRecStatus");
        if (modViewer::RegionIsSmaller(m_c)) modViewer::UnloadMasks(m_c);
        return false;
    }
    SkipPres = Val(modViewer::Setting(m_c, u"chkSkipPres", u"0")) != 0;
    if (!modViewer::IsShowAlive(m_c)) {
        modViewer::UnloadForm(m_c, u"frmStatus");
        RemoveViewerHook();
        if (ShowsRecStatus(m_c)) modViewer::UnloadForm(m_c, u"frmRecStatus");
        if (m_c.forms.IsFormLoaded(u"frmMask1")) modViewer::UnloadMasks(m_c);
        return false;
    }
    PrepareView();
    r.g_Recording = true;
    m_c.host.ksLib.SetDeviceNotice([this](const host::DeviceNotice& notice) {
        if (m_c.recording.g_Recording) Try([&] { m_c.forms.Get<frmNotice>(m_c).ShowNotice(notice); });
    });
    if (!modEncoder::StartEncoder(m_c)) {
        // A start that failed behind the encoder's own start has a running encoder: what it recorded stays whole.
        if (r.g_EncoderStarted && r.g_Recording) modEncoder::StopEncoder(m_c);
        r.g_Recording = false;
        RemoveViewerHook();
        if (ShowsRecStatus(m_c)) modViewer::UnloadForm(m_c, u"frmRecStatus");
        if (modViewer::RegionIsSmaller(m_c)) modViewer::UnloadMasks(m_c);
        return false;
    }
    m_c.host.ksLib.SetVolumeMeter([this](std::int32_t level) {
        constexpr std::int32_t kAudioLevel = 1143;
        OnMessage(host::WindowMessage{kAudioLevel, level, 0, {}});
    });
    if (Val(modViewer::Setting(m_c, u"chkLowVolDetect", u"1")) == 1) {
        modVolume::CheckLowVolume(m_c, true, modVolume::kSilenceLimit, modVolume::kVolumeThreshold);
        Load();
        tmrLowVolTest.SetEnabled(true);
    }
    AddFirstEntry();
    return true;
}

// What happens between the hook and the encoder: pointer, recent list, registration, the first slide's title.
void frmViewer::PrepareView() {
    recording::State& r = m_c.recording;
    Try([&] { View = r.g_Presentation->SlideShowSettings()->Run()->View(); });
    Try([&] { View->SetPointerType(host::PointerType::Arrow); });
    if (modViewer::Setting(m_c, u"chkStartPen", u"0") == u"1") {
        constexpr std::int32_t kRed = 0x0000FF;
        Try([&] { View->SetPointerType(host::PointerType::Pen); });
        Try([&] { View->SetPointerColor(kRed); });
    }
    Try([&] {
        RecentProjects recent(m_c);
        recent.LoadRecent();
        recent.AddRecent(m_c.support.packagePath);
    });
    Try([&] {
        String program = modGlobal::Join(m_c, m_c.host.installFolder, m_c.host.processes.ProgramName(u"Kestrum"));
        modExec::ShellExecuteWait(m_c, program, {u"-regpath", m_c.support.packagePath}, true);
    });
    Try([&] { PptApp->SetCommandBarVisible(u"Slide Show", false); });
    Try.Set(r.g_CurrentSlide, [&] { return View->CurrentShowPosition(); });
    r.g_CurrentTitle = TitleOf(*View, r.g_CurrentSlide);
}

// The first slide's entry needs no key frame call: it sits where the appended recording begins.
void frmViewer::AddFirstEntry() {
    constexpr std::uint32_t kLongAgoMs = 3000;  // the next slide change is never taken for a quick one
    recording::State& r = m_c.recording;
    LastSlideTick = static_cast<std::int32_t>(static_cast<std::uint32_t>(m_c.host.loop.TickCount()) - kLongAgoMs);
    m_c.project.g_Project.AddIndex(r.g_CurrentTitle, ToText(r.g_MediaLengthAtStart), DateTimeText(m_c.host.loop.Now()),
                                   u"", u"", u"", false, 0);
    modViewer::HandOverJournal(m_c);
}

bool frmViewer::InstallViewerHook() {
    constexpr std::int32_t kSettleMs = 300, kPowerPoint = 0;
    m_c.host.loop.Sleep(kSettleMs);
    if (m_c.host.ksHook.InstallMessageHook(MessageWindow(), kPowerPoint) == 0) return false;
    m_hookInstalled = true;
    return true;
}

void frmViewer::RemoveViewerHook() {
    if (!m_hookInstalled) return;
    m_c.host.ksHook.UnInstallMessageHook();
    m_hookInstalled = false;
}

}  // namespace kestrum
