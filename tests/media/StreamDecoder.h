// An independent decoder of the recorder's streams that gives each picture, or unit of sound, at once.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>

#include "media/package/PackageTypes.h"

namespace kestrum::media::test {

class StreamDecoder {
  public:
    /// Throws if the decoder does not take the header.
    explicit StreamDecoder(const Bytes& header, AVCodecID codec = AV_CODEC_ID_H264) {
        m_context.reset(avcodec_alloc_context3(avcodec_find_decoder(codec)));
        m_context->extradata = static_cast<std::uint8_t*>(av_mallocz(header.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        std::copy(header.begin(), header.end(), m_context->extradata);
        m_context->extradata_size = static_cast<int>(header.size());
        m_context->flags |= AV_CODEC_FLAG_LOW_DELAY;
        m_context->err_recognition = AV_EF_EXPLODE | AV_EF_BITSTREAM | AV_EF_BUFFER;
        m_context->thread_count = 1;
        if (avcodec_open2(m_context.get(), nullptr, nullptr) != 0) throw std::runtime_error("no decoder");
    }

    /// What a sample holds, valid until the next call; null if it cannot be decoded whole.
    const AVFrame* Decode(std::span<const std::uint8_t> sample) {
        Bytes padded(sample.begin(), sample.end());
        padded.resize(padded.size() + AV_INPUT_BUFFER_PADDING_SIZE);
        AVPacket* packet = av_packet_alloc();
        packet->data = padded.data();
        packet->size = static_cast<int>(sample.size());
        const int sent = avcodec_send_packet(m_context.get(), packet);
        av_packet_free(&packet);
        if (sent < 0 || avcodec_receive_frame(m_context.get(), m_frame.get()) < 0) return nullptr;
        return m_frame->decode_error_flags == 0 ? m_frame.get() : nullptr;
    }

  private:
    struct Free {
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    };
    std::unique_ptr<AVCodecContext, Free> m_context;
    std::unique_ptr<AVFrame, Free> m_frame{av_frame_alloc()};
};

}  // namespace kestrum::media::test
