#include "media/capture/PictureLoop.h"

#include <poll.h>

#include <algorithm>
#include <new>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"

namespace kestrum::media {
namespace {

// The whole screen is compared so often, for what the server does not tell (flips past the compositor, pointers that
// were moved by a program).
constexpr std::int64_t kSweepNs = kNsPerSecond;
// A still screen sends a picture so often, so that a player's clock goes on and the file's length grows.
constexpr std::int64_t kStillNs = 5 * kNsPerSecond;
constexpr std::int64_t kLongestKeyDistanceNs = 60 * kNsPerSecond;

}  // namespace

PictureLoop::PictureLoop(PictureSource& source, VideoEncoder& encoder, PositionClock& clock, PackageFeeder& feeder,
                         int framesPerSecond)
    : m_source(source),
      m_encoder(encoder),
      m_clock(clock),
      m_feeder(feeder),
      m_intervalNs(kNsPerSecond / framesPerSecond) {}

PictureLoop::~PictureLoop() {
    Stop();
}

void PictureLoop::Start(std::int64_t positionMs) {
    Taken(MonotonicNs());
    m_lastSweepNs = m_lastTakenNs;
    Send(positionMs, true, true);
    m_thread = std::thread([this] { Run(); });
}

void PictureLoop::Stop() {
    m_stop = true;
    m_wake.Raise();
    if (m_thread.joinable()) m_thread.join();
}

PictureCounts PictureLoop::Counts() const {
    const std::lock_guard lock(m_countMutex);
    return m_counts;
}

void PictureLoop::Run() {
    try {
        while (!m_stop && CheckScreen()) {
            KeepPromises();
            TakeDuePicture();
            Wait();
        }
        KeepPromises();
    } catch (const CaptureError&) {
        m_state = EncoderState::kScreenError;
    } catch (const std::bad_alloc&) {
        m_state = EncoderState::kOutOfMemory;
    }
}

bool PictureLoop::CheckScreen() {
    m_source.GetScreen().Pump();
    if (m_source.GetScreen().IsLost()) m_state = EncoderState::kScreenError;
    if (m_source.GetScreen().HasNewResolution()) m_state = EncoderState::kResolutionChanged;
    return m_state == EncoderState::kRunning;
}

void PictureLoop::KeepPromises() {
    while (const auto position = m_clock.TakePromise()) {
        Taken(MonotonicNs());
        const bool changed = m_source.Refresh(true);
        m_lastSweepNs = m_lastTakenNs;
        Send(*position, true, changed);
    }
}

void PictureLoop::Taken(std::int64_t nowNs) {
    m_lastTakenNs = nowNs;
    PutOffNext(nowNs);
}

// A picture that was late does not put off those after it, or of a film that runs at the same rate some would be
// missed.
void PictureLoop::PutOffNext(std::int64_t nowNs) {
    m_nextDueNs = std::max(m_nextDueNs, nowNs - m_intervalNs / 2) + m_intervalNs;
}

bool PictureLoop::IsPictureDue(std::int64_t nowNs) const {
    const bool hasNews = m_source.GetScreen().HasNews();
    if (nowNs < m_nextDueNs || m_feeder.IsBehind()) return false;
    return hasNews || nowNs >= m_lastSweepNs + kSweepNs || nowNs >= m_lastSentNs + kStillNs;
}

void PictureLoop::TakeDuePicture() {
    const std::int64_t now = MonotonicNs();
    if (!IsPictureDue(now)) return;
    const bool sweep = now >= m_lastSweepNs + kSweepNs;
    if (sweep) m_lastSweepNs = now;
    const bool hadNews = m_source.GetScreen().HasNews();
    m_lastTakenNs = now;
    const bool changed = m_source.Refresh(sweep);
    // A look at a still screen that found nothing keeps no picture back.
    if (changed || hadNews) PutOffNext(now);
    if (!changed && now < m_lastSentNs + kStillNs) return;
    // A promise made meanwhile goes first; its picture shows this change too.
    if (const auto position = m_clock.Stamp(now)) Send(*position, now >= m_lastKeyNs + kLongestKeyDistanceNs, changed);
}

void PictureLoop::Send(std::int64_t positionMs, bool key, bool changed) {
    const EncodedPicture picture = m_encoder.Encode(m_source.Picture(), m_source.Changes(), key);
    m_source.Encoded();
    m_lastSentNs = m_lastTakenNs;
    if (picture.isKey) m_lastKeyNs = m_lastTakenNs;
    m_feeder.PushVideo(positionMs, picture.isKey, Bytes(picture.sample.begin(), picture.sample.end()));
    const std::lock_guard lock(m_countMutex);
    ++m_counts.pictures;
    m_counts.changed += changed;
    m_counts.keyFrames += picture.isKey;
    m_counts.bytes += static_cast<std::int64_t>(picture.sample.size());
}

int PictureLoop::WaitMs() const {
    const std::int64_t now = MonotonicNs();
    const bool hasNews = m_source.GetScreen().HasNews();
    std::int64_t due = hasNews ? m_nextDueNs : std::min(m_lastSweepNs + kSweepNs, m_lastSentNs + kStillNs);
    due = std::max({due, m_nextDueNs, m_feeder.IsBehind() ? now + kNsPerSecond / 20 : now});
    // Rounded up: a millisecond too early would spin.
    return static_cast<int>(std::max<std::int64_t>(0, (due - now + kNsPerMs - 1) / kNsPerMs));
}

void PictureLoop::Wait() {
    Screen& screen = m_source.GetScreen();
    screen.Pump();
    pollfd descriptors[] = {{m_wake.FileDescriptor(), POLLIN, 0}, {screen.FileDescriptor(), POLLIN, 0}};
    // With news at hand only the time counts: a mouse in motion would wake the loop a thousand times a second.
    const nfds_t count = screen.HasNews() ? 1 : 2;
    poll(descriptors, count, WaitMs());
    m_wake.Clear();
}

}  // namespace kestrum::media
