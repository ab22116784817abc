#include "media/capture/AudioEncoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include <vector>

#include "media/capture/CaptureError.h"

namespace kestrum::media {
namespace {

// With so few bits for a channel they are spent on what words are told apart by, as wideband telephones do. Without the
// limit the hiss of a room takes them: of speech 15 dB above it much less is understood (bench/speech.py).
constexpr int kSpeechBitsPerSecond = 32000;
constexpr int kSpeechBandwidth = 7000;  ///< Hz

struct ContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

void Require(bool ok) {
    if (!ok) throw CaptureError(CaptureErrorKind::kEncoder, "The sound encoder failed.");
}

}  // namespace

class AudioEncoder::Impl {
  public:
    explicit Impl(const AudioLayout& layout) : m_channels(layout.channels) {
        const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
        Require(codec != nullptr);
        m_context.reset(avcodec_alloc_context3(codec));
        m_context->sample_fmt = AV_SAMPLE_FMT_FLTP;
        m_context->sample_rate = layout.rate;
        m_context->bit_rate = layout.bitsPerSecond;
        m_context->time_base = {1, layout.rate};
        if (layout.bitsPerSecond <= kSpeechBitsPerSecond * layout.channels) m_context->cutoff = kSpeechBandwidth;
        // Extradata instead of ADTS headers.
        m_context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        av_channel_layout_default(&m_context->ch_layout, layout.channels);
        // A third of the default search's time; the difference is not heard on speech.
        av_opt_set(m_context->priv_data, "aac_coder", "fast", 0);
        Require(avcodec_open2(m_context.get(), codec, nullptr) == 0);
        Require(m_context->frame_size == kFramesPerUnit);
        config.assign(m_context->extradata, m_context->extradata + m_context->extradata_size);
        MakeFrame(layout);
    }

    void Encode(std::span<const float> samples, const Output& output) {
        m_waiting.insert(m_waiting.end(), samples.begin(), samples.end());
        const std::size_t unit = static_cast<std::size_t>(kFramesPerUnit) * m_channels;
        std::size_t used = 0;
        for (; m_waiting.size() - used >= unit; used += unit) Send(m_waiting.data() + used, output);
        m_waiting.erase(m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(used));
    }

    void Finish(const Output& output) {
        const std::size_t unit = static_cast<std::size_t>(kFramesPerUnit) * m_channels;
        if (!m_waiting.empty()) {
            m_waiting.resize(unit, 0.0F);
            Send(m_waiting.data(), output);
            m_waiting.clear();
        }
        Require(avcodec_send_frame(m_context.get(), nullptr) == 0);
        Receive(output);
    }

    Bytes config;

  private:
    void MakeFrame(const AudioLayout& layout) {
        m_frame.reset(av_frame_alloc());
        m_packet.reset(av_packet_alloc());
        Require(m_frame && m_packet);
        m_frame->format = AV_SAMPLE_FMT_FLTP;
        m_frame->nb_samples = kFramesPerUnit;
        m_frame->sample_rate = layout.rate;
        av_channel_layout_default(&m_frame->ch_layout, layout.channels);
        Require(av_frame_get_buffer(m_frame.get(), 0) == 0);
    }

    void Send(const float* interleaved, const Output& output) {
        Require(av_frame_make_writable(m_frame.get()) == 0);
        for (int c = 0; c < m_channels; ++c) {
            auto* plane = reinterpret_cast<float*>(m_frame->data[c]);
            for (int i = 0; i < kFramesPerUnit; ++i) plane[i] = interleaved[i * m_channels + c];
        }
        m_frame->pts = m_sent;
        m_sent += kFramesPerUnit;
        Require(avcodec_send_frame(m_context.get(), m_frame.get()) == 0);
        Receive(output);
    }

    void Receive(const Output& output) {
        while (avcodec_receive_packet(m_context.get(), m_packet.get()) == 0) {
            // The stamp counts the delay: below 0 there is nothing but that.
            if (m_packet->pts >= 0) output(m_packet->pts, {m_packet->data, static_cast<std::size_t>(m_packet->size)});
            av_packet_unref(m_packet.get());
        }
    }

    const int m_channels;
    std::unique_ptr<AVCodecContext, ContextDeleter> m_context;
    std::unique_ptr<AVFrame, FrameDeleter> m_frame;
    std::unique_ptr<AVPacket, PacketDeleter> m_packet;
    std::vector<float> m_waiting;
    std::int64_t m_sent = 0;
};

AudioEncoder::AudioEncoder(const AudioLayout& layout) : m_impl(std::make_unique<Impl>(layout)) {}
AudioEncoder::~AudioEncoder() = default;
const Bytes& AudioEncoder::AudioSpecificConfig() const {
    return m_impl->config;
}
void AudioEncoder::Encode(std::span<const float> samples, const Output& output) {
    m_impl->Encode(samples, output);
}
void AudioEncoder::Finish(const Output& output) {
    m_impl->Finish(output);
}

}  // namespace kestrum::media
