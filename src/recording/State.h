// What a recording knows about itself, from the press of Record to the end of the show. Plain values and the handles
// that the recording owns.
#pragma once

#include <cstdint>
#include <memory>

#include "host/IApplication.h"
#include "host/IEventLoop.h"
#include "host/IInputHooks.h"

namespace kestrum {
class frmViewer;
}

namespace kestrum::recording {

struct State {
    /// The show was started by the Record command; cleared at the show's end.
    bool g_RecordRequested = false;
    /// PrepareAndRecord has been entered for this show; cleared at the show's begin.
    bool g_PrepareStarted = false;
    /// StartEncoder has reached the encoder's start; cleared at the show's begin.
    bool g_EncoderStarted = false;
    /// The session is active: set just before StartEncoder, cleared at the very end of DoSlideShowEnd.
    bool g_Recording = false;
    /// A start failed and the show must be ended by whoever still holds it.
    bool g_AbortShow = false;
    /// A fault of the encoder ended, or is ending, the recording; cleared when the next one starts.
    bool faulted = false;
    /// DoSlideShowEnd is at work: a second stop in its pumps finds nothing left to do.
    bool stopping = false;

    /// One-based document number at which the show starts.
    std::int32_t g_InitialSlide = 0;
    /// Position of the last indexed slide.
    std::int32_t g_CurrentSlide = 0;
    /// Title of the first indexed slide.
    String g_CurrentTitle;
    /// The presentation's `Saved` before the show.
    std::int16_t g_SavedState = 0;
    /// The window of this show.
    std::unique_ptr<host::ISlideShowWindow> g_ShowWindow;
    /// Counts the shows: a start that comes back from a dialog tells by it that its show is gone.
    std::int32_t showNumber = 0;
    /// The presentation being recorded.
    std::unique_ptr<host::IPresentation> g_Presentation;

    /// Media length in ms before this recording began; 0 for a new project.
    std::int32_t g_MediaLengthAtStart = 0;
    /// Result of the last of EncoderSetFilename, SetCaptureArea, EncoderStart; kept for a look in the debugger.
    std::int16_t g_LastEncoderResult = 0;
    /// Tick right after EncoderStart.
    std::int32_t g_RecordStartTick = 0;
    /// Runs CheckEncoderState; null while no encoder runs.
    std::unique_ptr<host::ITimer> g_EncoderPollTimer;

    /// Pointer position as the hook library last told it.
    host::Point pointerPosition;
    /// A recorder in another process tells that a show is in progress.
    bool showInProgress = false;
    /// The stop hot key is being handled.
    bool handlingStopKey = false;

    /// The windows that StartMouseTracing and StartKeyHooking were given; the hook callbacks find their object there.
    host::WindowHandle mouseHookWindow = 0, keyHookWindow = 0;

    /// The one driver form; set by it for as long as it exists.
    frmViewer* viewer = nullptr;
};

}  // namespace kestrum::recording
