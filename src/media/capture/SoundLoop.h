// The thread that reads the sound, encodes it and tells its level.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include "media/capture/AudioEncoder.h"
#include "media/capture/EncoderState.h"
#include "media/capture/LevelMeter.h"
#include "media/capture/PackageFeeder.h"
#include "media/capture/SoundInput.h"

namespace kestrum::media {

class SoundLoop {
  public:
    /// `input` is open. `onLevel` is called on the loop's thread.
    SoundLoop(SoundInput& input, const AudioLayout& layout, std::function<void(int)> onLevel);
    ~SoundLoop();
    SoundLoop(const SoundLoop&) = delete;
    SoundLoop& operator=(const SoundLoop&) = delete;

    /// Units go to `feeder` from `startMs` on, which is the moment `startNs` of the monotonic clock.
    void Start(PackageFeeder& feeder, std::int64_t startMs, std::int64_t startNs);
    /// Goes on until the sound of the moment `endNs` has come (at most half a second), cuts there and ends.
    void Stop(std::int64_t endNs);
    bool IsComplete() const { return m_isComplete; }
    std::int64_t Bytes() const { return m_bytes; }

  private:
    void Run();
    void Take();
    void Finish();
    void Encode();
    AudioEncoder::Output Output();
    std::int64_t FrameAt(std::int64_t ns) const;

    SoundInput& m_input;
    const AudioLayout m_layout;
    AudioEncoder m_encoder;
    LevelMeter m_meter;
    const std::function<void(int)> m_onLevel;
    PackageFeeder* m_feeder = nullptr;
    std::int64_t m_startMs = 0;
    std::int64_t m_startNs = 0;
    std::vector<float> m_samples;
    std::int64_t m_framesTaken = 0;
    std::atomic<std::int64_t> m_endNs{0};  ///< 0 while running
    std::atomic<bool> m_isComplete{true};
    std::atomic<std::int64_t> m_bytes{0};
    std::thread m_thread;

  public:
    /// The parameter block for the package's header.
    const media::Bytes& AudioSpecificConfig() const { return m_encoder.AudioSpecificConfig(); }
};

}  // namespace kestrum::media
