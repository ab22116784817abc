// The desktop's cast of one monitor: allowed by its user, running, and the newest picture at hand. Decides how long is
// waited for it, and what is remembered for the next time.
//
// The functions may be called from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "media/capture/portal/FrameStream.h"
#include "media/capture/portal/KeepWaiting.h"
#include "media/capture/portal/PortalSession.h"
#include "media/capture/portal/TokenFile.h"

namespace kestrum::media {

class ScreenCast {
  public:
    /// Asks the desktop for a monitor, and its user if it was not allowed before; `keepWaiting` says how long his
    /// answer is waited for. Throws CaptureError (kNoDisplay) with a sentence; then nothing runs.
    explicit ScreenCast(const KeepWaiting& keepWaiting);

    FrameStream& Frames() { return *m_frames; }
    /// Place of the monitor in the desktop's own measure, if the desktop tells it.
    std::optional<Area> Place() const { return m_session.Grant().place; }
    bool ShowsPointer() const { return m_session.Grant().showsPointer; }
    /// The user, the desktop or PipeWire has ended it.
    bool IsLost();
    /// It is not the right monitor: next time the user is asked again.
    void Forget() const { m_token.Write({}); }

  private:
    void WaitForFirstFrame();

    TokenFile m_token;
    std::mutex m_mutex;
    PortalSession m_session;
    std::unique_ptr<FrameStream> m_frames;
};

}  // namespace kestrum::media
