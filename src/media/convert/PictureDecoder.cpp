#include "media/convert/PictureDecoder.h"

#include "media/convert/PackageInput.h"

namespace kestrum::media {

PictureDecoder::PictureDecoder(const AVStream& source, Delay delay)
    : m_timeBase(source.time_base),
      m_decoder(OpenDecoder(source, delay == Delay::kNone ? FF_THREAD_SLICE : FF_THREAD_FRAME | FF_THREAD_SLICE)) {}

void PictureDecoder::Decode(const AVPacket* packet, const TakePicture& take) {
    const int sent = avcodec_send_packet(m_decoder.get(), packet);
    if (sent != AVERROR_INVALIDDATA) CheckAv(sent, "decode a picture");
    auto frame = NewFrame();
    while (true) {
        const int result = avcodec_receive_frame(m_decoder.get(), frame.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        if (result == AVERROR_INVALIDDATA) continue;
        CheckAv(result, "decode a picture");
        const std::int64_t stamp = frame->pts != AV_NOPTS_VALUE ? frame->pts : frame->best_effort_timestamp;
        if (stamp != AV_NOPTS_VALUE) take(*frame, ToMs(stamp, m_timeBase));
        av_frame_unref(frame.get());
    }
}

}  // namespace kestrum::media
