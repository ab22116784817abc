// The movie's pictures, encoded: H.264 at variable frame rate, a key frame wherever the caller or the plan of index
// entries asks for one. A picture that stands still across an entry is repeated there, and the first one after 100 ms:
// that is where the cover is taken. No picture refers to a later one: seeking is exact and the movie needs no time
// shift. All cores work.
#pragma once

#include <cstdint>

#include "media/convert/KeyFramePlan.h"
#include "media/convert/Mp4Output.h"

namespace kestrum::media {

/// Where the cover is taken from a movie, ms: nothing but what begins there or later is seen.
constexpr std::int64_t kCoverMs = 100;

struct VideoEncodeSettings {
    int width = 0;
    int height = 0;
    int kbps = 0;  ///< average bitrate; 0 is constant quality
};

class MovieEncoder {
  public:
    /// `source`: the track whose colours and frame rate the movie keeps.
    MovieEncoder(const AVStream& source, const VideoEncodeSettings& settings, KeyFramePlan plan, Mp4Output& output);

    /// A picture of the movie's size in 4:2:0 that is seen from `pos` on; one that does not lie behind the last is
    /// dropped.
    void Put(AvHandle<AVFrame> picture, std::int64_t pos, bool keyFrame);
    /// No picture follows.
    void Finish();

  private:
    void Open(const AVStream& source, const VideoEncodeSettings& settings);
    void RepeatLastBefore(std::int64_t pos);
    void RepeatLastAt(std::int64_t pos, AVPictureType type);
    void Encode(AVFrame* picture);

    KeyFramePlan m_plan;
    Mp4Output& m_output;
    AVStream& m_track;
    AvHandle<AVCodecContext> m_encoder;
    AvHandle<AVFrame> m_last;  ///< the newest picture, null before the first
    bool m_coverDue = true;
    AvHandle<AVPacket> m_packet;
};

}  // namespace kestrum::media
