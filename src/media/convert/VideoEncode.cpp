#include "media/convert/VideoEncode.h"

#include <utility>

namespace kestrum::media {

VideoEncode::VideoEncode(const AVStream& source, const VideoEncodeSettings& settings, KeyFramePlan plan,
                         Mp4Output& output)
    : m_decoder(source, PictureDecoder::Delay::kSome),
      m_scaler(settings.width, settings.height),
      m_encoder(source, settings, std::move(plan), output) {}

void VideoEncode::Take(AVPacket& packet) {
    Decode(&packet);
}

void VideoEncode::Finish(std::int64_t /*lengthMs*/) {
    Decode(nullptr);
    m_encoder.Finish();
}

void VideoEncode::Decode(const AVPacket* packet) {
    m_decoder.Decode(packet, [this](AVFrame& picture, std::int64_t pos) {
        m_encoder.Put(m_scaler.Stretch(picture), pos, picture.key_frame != 0);
    });
}

}  // namespace kestrum::media
