#include "media/capture/portal/ScreenCast.h"

#include <poll.h>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/portal/ScreenNudge.h"

namespace kestrum::media {
namespace {

constexpr std::int64_t kFirstFrameNs = 6 * kNsPerSecond;
// Most desktops send the first picture by themselves.
constexpr int kNudgeMs = 300;

}  // namespace

ScreenCast::ScreenCast(const KeepWaiting& keepWaiting) : m_session(m_token.Read(), keepWaiting) {
    m_token.Write(m_session.Grant().token);
    m_frames = std::make_unique<FrameStream>(m_session.OpenRemote(), m_session.Grant().node);
    WaitForFirstFrame();
}

void ScreenCast::WaitForFirstFrame() {
    const Area monitor = Place().value_or(Area{});
    ScreenNudge nudge(monitor.x, monitor.y);
    const std::int64_t end = MonotonicNs() + kFirstFrameNs;
    while (!m_frames->HasNewFrame()) {
        if (MonotonicNs() > end || m_frames->IsLost()) {
            throw CaptureError(CaptureErrorKind::kNoDisplay, "The desktop sends no picture of the screen.");
        }
        pollfd descriptor{m_frames->FileDescriptor(), POLLIN, 0};
        if (poll(&descriptor, 1, kNudgeMs) == 0) nudge.Nudge();
        m_frames->Acknowledge();
    }
}

bool ScreenCast::IsLost() {
    const std::lock_guard lock(m_mutex);
    return m_session.IsClosed() || m_frames->IsLost();
}

}  // namespace kestrum::media
