// Tracks that go into the movie as they are.
#pragma once

#include <cstdint>
#include <optional>

#include "media/convert/Mp4Output.h"
#include "media/convert/TrackJob.h"

namespace kestrum::media {

class VideoCopy : public TrackJob {
  public:
    VideoCopy(const AVStream& source, Mp4Output& output);
    void Take(AVPacket& packet) override;
    void Finish(std::int64_t /*lengthMs*/) override {}

  private:
    AVRational m_timeBase;
    Mp4Output& m_output;
    AVStream& m_track;
};

/// AAC. The package's times are whole ms; here each packet lasts its number of samples, and the package's time is
/// followed only where the two part by more than that rounding: at a gap.
class AudioCopy : public TrackJob {
  public:
    AudioCopy(const AVStream& source, Mp4Output& output);
    void Take(AVPacket& packet) override;
    void Finish(std::int64_t /*lengthMs*/) override {}

  private:
    AVRational m_timeBase;
    AVRational m_sampleBase;
    Mp4Output& m_output;
    AVStream& m_track;
    std::optional<std::int64_t> m_next;  ///< where the next unit is expected
};

}  // namespace kestrum::media
