// The spine of a recording: the hidden form whose event sink on the host's application takes a press of Record to a
// running encoder, turns every slide change into an index entry, and brings everything down however the show ends.
//
// The host gives no reliable moment at which a started show is on screen. So the Record command only asks for the show;
// the show's own events drive the rest, and on hosts of major version 14 and later a short timer stands between the
// first slide's event and the start.
//
// The form is never shown. Unloading it destroys its window and stops its timers; the object, its sink and its fields
// live on, and it loads itself again at the next use. Everything runs on the one thread; waits that pump events
// re-enter, which the flags of State guard. All routines skip what the host refuses and go on (ResumeNext).
#pragma once

#include <memory>

#include "host/ResumeNext.h"
#include "recording/CHooker.h"
#include "recording/CTracer.h"
#include "recording/Context.h"

namespace kestrum {

class frmViewer : public ui::Form, private host::IApplicationEvents {
  public:
    explicit frmViewer(const recording::Context& c);
    ~frmViewer() override;

    /// Gives the form the application whose events it lives on; from now on they arrive.
    void SetPptApp(host::IApplication& application);

    // Public operations.

    /// The checks before a recording, each of which reports its own failure. True if it may start. Re-enters.
    bool BeforeRecord();
    /// Starts the encoder for the running show. True if it runs. Re-enters.
    bool StartPowerPointRecord();
    void PptApp_SlideShowEnd(host::IPresentation& presentation);
    /// Ends the recording and stores it; nothing unless one is active. Re-enters.
    void DoSlideShowEnd();
    /// The show's pointer is the pen.
    bool PenMode();
    /// Passes a pen message on to a recorder that runs as a program of its own.
    void SendPenOp(std::int32_t message);

    void PptApp_SlideShowBegin(host::ISlideShowWindow& window);
    void PptApp_SlideShowNextSlide(host::ISlideShowWindow& window);
    void PptApp_PresentationClose(host::IPresentation& presentation);

    /// Stops the low-volume test and ends the show.
    void AbortRecording();
    /// The window that messages and hooks are given; loads the form if needed.
    host::WindowHandle MessageWindow();

    // Fields.
    std::unique_ptr<host::ISlideShowView> View;
    bool SkipPres = false;
    /// Tick of the last slide change.
    std::int32_t LastSlideTick = 0;
    std::unique_ptr<CTracer> MouseHooker;
    std::unique_ptr<CHooker> KeyHooker;

    ui::Timer tmrPrepareAndRecord{*this, u"tmrPrepareAndRecord", 100};
    ui::Timer tmrTouch{*this, u"tmrTouch", 20000};
    ui::Timer tmrLowVolTest{*this, u"tmrLowVolTest", 200};
    ui::Timer tmrSwitchPenColor{*this, u"tmrSwitchPenColor", 50};

  protected:
    void OnLoad() override;
    void OnUnload() override;

  private:
    // The sink: an entry point, nothing leaves it into the host.
    void SlideShowBegin(host::ISlideShowWindow& window) override;
    void SlideShowNextSlide(host::ISlideShowWindow& window) override;
    void SlideShowEnd(host::IPresentation& presentation) override;
    void PresentationClose(host::IPresentation& presentation) override;

    // The start.
    void PrepareAndRecord();
    void FirstSlide(host::ISlideShowWindow& window);
    void ShowRunningTime();
    bool StartIsRefused();
    void FailStart();
    enum class Masks { ByRegion, IfLoaded };
    void UndoStart(Masks masks);
    void PrepareView();
    void AddFirstEntry();
    bool InstallViewerHook();
    void RemoveViewerHook();

    // Slides.
    void FeedOtherRecorder(host::ISlideShowWindow& window);
    void TraceOnly(host::ISlideShowWindow& window);
    void IndexSlide(host::ISlideShowWindow& window);
    void AddEntry(const String& title, std::int32_t position);
    String TitleOf(host::ISlideShowView& view, std::int32_t position);
    void StoreFrameSize();
    void StoreDuration();

    // Messages and timers.
    std::int64_t OnMessage(const host::WindowMessage& message);
    void ViewerWndProc(const host::WindowMessage& message);
    void TitleFromOutside(const std::string& bytes);
    void PenStroke(std::int32_t message);
    void ToggleCanvas();
    void ToggleWhiteboard();
    void YieldToEvents();
    void StopHotKey();
    void SwitchPen();
    void tmrTouch_Timer();
    void tmrLowVolTest_Timer();

    void EnsureMouseHooker();
    void ReleaseKeyHookerAtLastShow();
    std::int32_t OfficeMajor();

    recording::Context m_c;
    host::ResumeNext Try;
    host::IApplication* PptApp = nullptr;
    std::unique_ptr<host::ISubscription> m_subscription;
    std::unique_ptr<host::IMessageWindow> m_window;
    /// ViewerWndProc stands before the window's own procedure.
    bool m_hookInstalled = false;
};

}  // namespace kestrum
