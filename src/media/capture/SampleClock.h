// Turns blocks of sound, each with the time it was heard, into one stream of samples without gaps that begins exactly
// at the recording's start. Decides what becomes silence and how a sound card that runs too fast or too slow is kept in
// step with the pictures.
//
// Knows no thread and no sound server. Samples are float, interleaved.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kestrum::media {

class SampleClock {
  public:
    SampleClock(int rate, int channels) : m_rate(rate), m_channels(channels) {}

    /// The recording begins at this moment of the monotonic clock; sound heard before it is thrown away.
    void Start(std::int64_t startNs);
    /// A block whose first sample was heard at `heardNs`. Nothing comes out of it before Start.
    void Push(std::int64_t heardNs, std::span<const float> samples);
    /// The source was lost or has just come back: what is missing at the next block is silence, however short it is.
    void Interrupted() { m_anchored = false; }
    /// Silence up to this moment, for a source that is not there.
    void FillTo(std::int64_t ns);

    /// The frame that lies at a moment of the monotonic clock, counted from the start.
    std::int64_t FrameAt(std::int64_t ns) const;
    /// Frames (a sample of each channel) that have come out so far, taken or not.
    std::int64_t FramesProduced() const { return m_produced; }
    /// Samples that came out and were not taken yet.
    std::vector<float>& Output() { return m_output; }

  private:
    bool IsGap(std::int64_t errorFrames);
    void AppendSilence(std::int64_t frames);
    void Append(std::span<const float> samples);
    /// The block with so many frames more or less, spread over its whole length.
    void AppendStretched(std::span<const float> samples, int change);
    void FollowDrift(std::int64_t errorFrames, std::span<const float> samples);
    /// The error has been the same for a while: a real displacement, not a hasty measurement.
    bool IsSteady(std::int64_t errorFrames, std::size_t frames);
    int Correction(std::size_t frames);

    const int m_rate;
    const int m_channels;
    bool m_started = false;
    bool m_anchored = false;
    std::int64_t m_startNs = 0;
    std::int64_t m_produced = 0;
    double m_drift = 0;  ///< smoothed error in frames: above 0 the samples come too slowly
    std::size_t m_sinceCorrection = 0;
    std::size_t m_steadyFrames = 0;
    int m_lateBlocks = 0;
    std::vector<float> m_output;
};

}  // namespace kestrum::media
