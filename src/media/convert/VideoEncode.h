// Pictures encoded anew: H.264 at variable frame rate, scaled if the size differs, with a key frame wherever the
// recording has one and at every index entry. A picture that stands still across an entry is repeated there. No
// picture refers to a later one: seeking is exact and the movie needs no time shift.
#pragma once

#include <cstdint>

#include "media/convert/KeyFramePlan.h"
#include "media/convert/Mp4Output.h"
#include "media/convert/TrackJob.h"

namespace kestrum::media {

/// The cover of a publication is the movie's first picture from here on, so each movie has one, be it that the
/// recording stood still from its first picture to its end.
inline constexpr std::int64_t kCoverMs = 100;

struct VideoEncodeSettings {
    int width = 0;
    int height = 0;
    int kbps = 0;  ///< average bitrate; 0 is constant quality
};

class VideoEncode : public TrackJob {
  public:
    VideoEncode(const AVStream& source, const VideoEncodeSettings& settings, KeyFramePlan plan, Mp4Output& output);
    void Take(AVPacket& packet) override;
    void Finish() override;

  private:
    void OpenEncoder(const AVStream& source, const VideoEncodeSettings& settings);
    void Decode(const AVPacket* packet);
    void TakePicture(AVFrame& decoded);
    AvHandle<AVFrame> Scaled(const AVFrame& decoded);
    void RepeatLastAt(std::int64_t pos);
    void Encode(AVFrame* picture);
    void Drain();

    AVRational m_timeBase;
    KeyFramePlan m_plan;
    Mp4Output& m_output;
    AVStream& m_track;
    AvHandle<AVCodecContext> m_decoder;
    AvHandle<AVCodecContext> m_encoder;
    AvHandle<SwsContext> m_scaler;
    AvHandle<AVFrame> m_last;  ///< the newest picture in the movie's size, null before the first
    AvHandle<AVPacket> m_packet;
};

}  // namespace kestrum::media
