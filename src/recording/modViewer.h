// The driver's small questions and acts on the running show: is it alive, whose is it, end it, release what a recording
// brought up. None raises unless it says so; what the host refuses is skipped and traced.
#pragma once

#include <optional>

#include "recording/Context.h"

namespace kestrum::modViewer {

/// The default text of key msgMarkAsFinal of frmPPT.
inline const String kMarkedAsFinal =
    u"Please check whether this presentation is marked as final. If it is, remove Mark as Final from it!";

/// The state of g_ShowWindow's view can be read. The value itself means nothing.
bool IsShowAlive(const recording::Context& c);
/// A running show belongs to the active presentation. False on any failure.
bool IsShowRunningForActive(const recording::Context& c);
/// The show's window (`inShow`) or the active document window refuses to be activated: a presentation marked as final
/// shows itself so.
bool IsMarkedFinal(const recording::Context& c, bool inShow);
/// Ends the active presentation's show; `Run` on a running show gives that show. Raises. Re-enters (end event).
void ExitSlideShow(const recording::Context& c);
/// Stops the low-volume test and ends the show; its end event does the rest. Re-enters.
void AbortRecording(const recording::Context& c);
/// The active presentation's `Saved` becomes what it was before the show.
void RestoreSaved(const recording::Context& c);

/// A recording in PowerPoint is marked, and its heartbeat is fresh.
bool IsRecordingLive(const recording::Context& c);
/// A live recording writes to another package than that of the presentation `fullName`.
bool IsForeignRecording(const recording::Context& c, const String& fullName);

/// The window of a recorder that runs as a program of its own: by class "LarkspinWin", else by that title.
std::optional<host::WindowHandle> FindRecorderWindow(const recording::Context& c);
/// Hands a slide title to that window as copy-data: two bytes a character are announced, the first half holds the title
/// one byte a character ('?' for what does not fit), the rest is zero.
void SendSlideTitle(const recording::Context& c, host::WindowHandle window, const String& title);

/// Takes a form down if it is loaded.
void UnloadForm(const recording::Context& c, StringView name);
void UnloadMasks(const recording::Context& c);
/// The capture region is narrower or lower than the screen: masks cover the rest.
bool RegionIsSmaller(const recording::Context& c);

/// Keeps the list of entries in the package while it grows, so that a crash loses none. A failure changes nothing.
void HandOverJournal(const recording::Context& c);

/// Takes down all that a recording brought up: canvas and whiteboard, every form (frmViewer last but still there to be
/// loaded again), the work folder.
void ReleaseRecordingUi(const recording::Context& c);

/// A setting of the section "configure".
String Setting(const recording::Context& c, StringView key, StringView fallback);

}  // namespace kestrum::modViewer
