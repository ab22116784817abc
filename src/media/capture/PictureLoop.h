// The thread that takes pictures. Decides when: as soon as something was drawn, at most so many times a second; at once
// when a key frame is asked for; and now and then though nothing happened.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

#include "media/capture/EncoderState.h"
#include "media/capture/PackageFeeder.h"
#include "media/capture/PictureSource.h"
#include "media/capture/PositionClock.h"
#include "media/capture/VideoEncoder.h"
#include "media/capture/WakeSignal.h"

namespace kestrum::media {

struct PictureCounts {
    std::int64_t pictures = 0;
    std::int64_t changed = 0;
    std::int64_t keyFrames = 0;
    std::int64_t bytes = 0;
};

class PictureLoop {
  public:
    PictureLoop(PictureSource& source, VideoEncoder& encoder, PositionClock& clock, PackageFeeder& feeder,
                int framesPerSecond);
    ~PictureLoop();
    PictureLoop(const PictureLoop&) = delete;
    PictureLoop& operator=(const PictureLoop&) = delete;

    /// Sends the picture that the source holds as the recording's first, a key frame at `positionMs`, and begins.
    void Start(std::int64_t positionMs);
    /// A promise was made: it is kept at once.
    void Wake() { m_wake.Raise(); }
    /// Keeps the promises made and ends.
    void Stop();
    /// kRunning, or why no more pictures are taken.
    EncoderState State() const { return m_state; }
    PictureCounts Counts() const;

  private:
    void Run();
    void KeepPromises();
    void TakeDuePicture();
    void Taken(std::int64_t nowNs);
    void PutOffNext(std::int64_t nowNs);
    void Send(std::int64_t positionMs, bool key, bool changed);
    int WaitMs() const;
    void Wait();
    bool CheckScreen();
    bool IsPictureDue(std::int64_t nowNs) const;

    PictureSource& m_source;
    VideoEncoder& m_encoder;
    PositionClock& m_clock;
    PackageFeeder& m_feeder;
    const std::int64_t m_intervalNs;
    WakeSignal m_wake;
    std::atomic<bool> m_stop{false};
    std::atomic<EncoderState> m_state{EncoderState::kRunning};
    std::int64_t m_lastTakenNs = 0;
    std::int64_t m_nextDueNs = 0;  ///< no picture is taken earlier, unless it was promised
    std::int64_t m_lastSentNs = 0;
    std::int64_t m_lastKeyNs = 0;
    std::int64_t m_lastSweepNs = 0;
    mutable std::mutex m_countMutex;
    PictureCounts m_counts;
    std::thread m_thread;
};

}  // namespace kestrum::media
