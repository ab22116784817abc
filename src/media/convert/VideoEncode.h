// The recording's pictures encoded anew: scaled if the size differs, a key frame wherever the recording has one.
#pragma once

#include "media/convert/MovieEncoder.h"
#include "media/convert/PictureDecoder.h"
#include "media/convert/PictureScaler.h"
#include "media/convert/TrackJob.h"

namespace kestrum::media {

class VideoEncode : public TrackJob {
  public:
    VideoEncode(const AVStream& source, const VideoEncodeSettings& settings, KeyFramePlan plan, Mp4Output& output);
    void Take(AVPacket& packet) override;
    void Finish(std::int64_t lengthMs) override;

  private:
    void Decode(const AVPacket* packet);

    PictureDecoder m_decoder;
    PictureScaler m_scaler;
    MovieEncoder m_encoder;
};

}  // namespace kestrum::media
