// The driver's form, its event sink and its timers.
#include "recording/frmViewer.h"

#include "devices/modVolume.h"
#include "recording/modViewer.h"
#include "support/modConfig.h"
#include "support/modGlobal.h"

namespace kestrum {

frmViewer::frmViewer(const recording::Context& c) : Form(c.forms, u"frmViewer"), m_c(c), Try(c.host.trace) {
    m_c.recording.viewer = this;
    tmrTouch.SetEnabled(true);
    tmrPrepareAndRecord.onTimer = [this] {
        tmrPrepareAndRecord.SetEnabled(false);
        PrepareAndRecord();
    };
    tmrTouch.onTimer = [this] { tmrTouch_Timer(); };
    tmrLowVolTest.onTimer = [this] { tmrLowVolTest_Timer(); };
    tmrSwitchPenColor.onTimer = [this] {
        tmrSwitchPenColor.SetEnabled(false);
        SwitchPen();
    };
}

frmViewer::~frmViewer() {
    Discard();
    m_subscription.reset();
    m_c.host.ksLib.SetVolumeMeter({});
    m_c.host.ksLib.SetDeviceNotice({});
    m_c.recording.viewer = nullptr;
}

void frmViewer::SetPptApp(host::IApplication& application) {
    PptApp = &application;
    m_subscription.reset();  // never two at once: each event would come twice
    m_subscription = application.Subscribe(*this);
}

void frmViewer::OnLoad() {
    m_window =
        m_c.host.windows.CreateMessageWindow(Name(), [this](const host::WindowMessage& m) { return OnMessage(m); });
}

void frmViewer::OnUnload() {
    m_c.host.ksLib.SetVolumeMeter({});
    m_c.host.ksLib.SetDeviceNotice({});
    m_hookInstalled = false;
    m_window.reset();
}

host::WindowHandle frmViewer::MessageWindow() {
    Load();
    return m_window ? m_window->Handle() : 0;
}

// --- the sink ------------------------------------------------------------------------------------------------------

void frmViewer::SlideShowBegin(host::ISlideShowWindow& window) {
    Try([&] { PptApp_SlideShowBegin(window); });
}

void frmViewer::SlideShowNextSlide(host::ISlideShowWindow& window) {
    Try([&] { PptApp_SlideShowNextSlide(window); });
}

void frmViewer::SlideShowEnd(host::IPresentation& presentation) {
    Try([&] { PptApp_SlideShowEnd(presentation); });
}

void frmViewer::PresentationClose(host::IPresentation& presentation) {
    Try([&] { PptApp_PresentationClose(presentation); });
}

namespace {

/// The host's own object for an event's window, which outlives the event; null if the host has none such.
std::unique_ptr<host::ISlideShowWindow> Keep(host::IApplication& app, host::ISlideShowWindow& window) {
    String name = window.Presentation()->FullName();
    for (std::int32_t i = app.SlideShowWindowCount(); i >= 1; --i) {
        auto candidate = app.SlideShowWindow(i);
        if (candidate->Presentation()->FullName() == name) return candidate;
    }
    return nullptr;
}

}  // namespace

void frmViewer::PptApp_SlideShowBegin(host::ISlideShowWindow& window) {
    if (!KeyHooker) {
        constexpr std::int32_t kF8 = 119;
        KeyHooker = std::make_unique<CHooker>(m_c);
        KeyHooker->OnSystemKeyUp = [this](std::int32_t keyCode) {
            if (keyCode == kF8) tmrSwitchPenColor.SetEnabled(true);
        };
        Try([&] { KeyHooker->StartKeyHooking(MessageWindow()); });
    }
    if (modViewer::IsRecordingLive(m_c)) return;
    recording::State& r = m_c.recording;
    r.g_PrepareStarted = false;
    r.g_EncoderStarted = false;
    ++r.showNumber;
    if (modViewer::Setting(m_c, u"chkAutoRecord", u"0") == u"1" && !r.g_RecordRequested) {
        Try.Set(r.g_InitialSlide, [&] { return window.View()->CurrentShowPosition(); });
        Try.Set(r.g_SavedState, [&] { return PptApp->ActivePresentation()->Saved(); });
    }
    Try([&] { r.g_ShowWindow = Keep(*PptApp, window); });
    Try.Set(m_c.display.g_SlideWidthPt,
            [&] { return static_cast<std::int32_t>(PptApp->ActivePresentation()->SlideWidth()); });
    Try.Set(m_c.display.g_SlideHeightPt,
            [&] { return static_cast<std::int32_t>(PptApp->ActivePresentation()->SlideHeight()); });
}

void frmViewer::PptApp_SlideShowEnd(host::IPresentation& presentation) {
    recording::State& r = m_c.recording;
    ReleaseKeyHookerAtLastShow();
    if (Try.If([&] { return modViewer::IsForeignRecording(m_c, presentation.FullName()); })) return;
    if (modViewer::Setting(m_c, u"chkAutoRecord", u"0") == u"1" || r.g_RecordRequested) modViewer::RestoreSaved(m_c);
    r.g_RecordRequested = false;
    if (tmrPrepareAndRecord.Enabled()) tmrPrepareAndRecord.SetEnabled(false);
    modViewer::UnloadForm(m_c, u"frmTopmost");
    if (m_c.forms.IsFormLoaded(u"frmMask1")) modViewer::UnloadMasks(m_c);
    if (r.g_Recording) return DoSlideShowEnd();
    Try([&] {
        if (auto window = modViewer::FindRecorderWindow(m_c)) {
            String name = modGlobal::FileNameOf(m_c, presentation.FullName());
            modViewer::SendSlideTitle(m_c, *window, u"** after " + name);
        }
    });
    MouseHooker.reset();
}

void frmViewer::PptApp_PresentationClose(host::IPresentation&) {
    constexpr std::int32_t kFirstWithSafeCount = 12;
    // While a stop is at work its show is still counted; running it again would start a new one.
    if (m_c.recording.g_Recording && !m_c.recording.stopping) {
        bool running =
            OfficeMajor() < kFirstWithSafeCount ? modViewer::IsShowAlive(m_c) : modViewer::IsShowRunningForActive(m_c);
        if (running) Try([&] { modViewer::ExitSlideShow(m_c); });
    }
    ReleaseKeyHookerAtLastShow();
}

void frmViewer::ReleaseKeyHookerAtLastShow() {
    if (KeyHooker && Try.If([&] { return PptApp->SlideShowWindowCount() == 1; })) KeyHooker.reset();
}

std::int32_t frmViewer::OfficeMajor() {
    std::int32_t major = 0;
    Try.Set(major, [&] {
        String version = PptApp->Version();
        return ToInt16(version.substr(0, version.find(u'.')));
    });
    return major;
}

void frmViewer::EnsureMouseHooker() {
    if (!MouseHooker) {
        MouseHooker = std::make_unique<CTracer>(m_c);
        MouseHooker->OnSystemMouseLeftDown = [this] { PenStroke(0x8002); };
        MouseHooker->OnSystemMouseLeftUp = [this] { PenStroke(0x8003); };
        MouseHooker->OnSystemMouseRightUp = [this] { PenStroke(0x8004); };
    }
    Try([&] { MouseHooker->StartMouseTracing(MessageWindow()); });
}

void frmViewer::AbortRecording() {
    tmrLowVolTest.SetEnabled(false);
    Try([&] {
        if (View) View->Exit();
    });
}

// --- timers --------------------------------------------------------------------------------------------------------

void frmViewer::tmrTouch_Timer() {
    if (!m_c.recording.g_Recording) return;
    Try([&] {
        modConfig::SaveSetting(m_c, modGlobal::kPowerPointTokens, u"touchtime",
                               ToText(modGlobal::GetPositiveTick(m_c.host.loop)));
    });
}

void frmViewer::tmrLowVolTest_Timer() {
    bool goesOn = Try.If(
        [&] { return modVolume::CheckLowVolume(m_c, false, modVolume::kSilenceLimit, modVolume::kVolumeThreshold); });
    if (!goesOn) tmrLowVolTest.SetEnabled(false);
}

}  // namespace kestrum
