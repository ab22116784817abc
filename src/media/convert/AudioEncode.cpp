#include "media/convert/AudioEncode.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <new>

#include "media/package/Error.h"

namespace kestrum::media {

namespace {

constexpr int kMaxChannels = 2;
/// Differences below this are the rounding of time stamps, not gaps.
constexpr std::int64_t kGapMs = 40;

}  // namespace

AudioEncode::AudioEncode(const AVStream& source, int kbps, Mp4Output& output)
    : m_timeBase(source.time_base),
      m_output(output),
      m_track(output.AddTrack()),
      m_decoder(OpenDecoder(source)),
      m_packet(NewPacket()) {
    OpenEncoder(*source.codecpar, kbps);
    OpenResampler();
    m_queue.reset(av_audio_fifo_alloc(m_encoder->sample_fmt, m_encoder->ch_layout.nb_channels, m_encoder->frame_size));
    if (!m_queue) throw std::bad_alloc();
    CheckAv(avcodec_parameters_from_context(m_track.codecpar, m_encoder.get()), "set up the sound track");
    m_track.time_base = m_encoder->time_base;
}

void AudioEncode::OpenEncoder(const AVCodecParameters& source, int kbps) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (codec == nullptr) throw Error(ErrorKind::kIo, "This system's libavcodec has no AAC encoder.", 0);
    m_encoder.reset(avcodec_alloc_context3(codec));
    if (!m_encoder) throw std::bad_alloc();
    const int channels = std::clamp(source.ch_layout.nb_channels, 1, kMaxChannels);
    av_channel_layout_default(&m_encoder->ch_layout, channels);
    m_encoder->sample_rate = source.sample_rate;
    m_encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    m_encoder->bit_rate = std::int64_t{1000} * std::max(kbps, channels == 1 ? 64 : 96);
    m_encoder->time_base = AVRational{1, source.sample_rate};
    m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    CheckAv(avcodec_open2(m_encoder.get(), codec, nullptr), "open the AAC encoder");
}

void AudioEncode::OpenResampler() {
    AVChannelLayout sourceLayout = {};
    av_channel_layout_default(&sourceLayout, m_decoder->ch_layout.nb_channels);
    SwrContext* resampler = nullptr;
    const int result =
        swr_alloc_set_opts2(&resampler, &m_encoder->ch_layout, m_encoder->sample_fmt, m_encoder->sample_rate,
                            &sourceLayout, m_decoder->sample_fmt, m_decoder->sample_rate, 0, nullptr);
    m_resampler.reset(resampler);
    CheckAv(result, "set up the sound");
    CheckAv(swr_init(m_resampler.get()), "set up the sound");
}

void AudioEncode::Take(AVPacket& packet) {
    Decode(&packet);
}

void AudioEncode::Finish(std::int64_t /*lengthMs*/) {
    Decode(nullptr);
    EncodeQueued(true);
    Encode(nullptr);
}

void AudioEncode::Decode(const AVPacket* packet) {
    const int sent = avcodec_send_packet(m_decoder.get(), packet);
    if (sent != AVERROR_INVALIDDATA) CheckAv(sent, "decode sound");  // what is missing becomes silence
    auto frame = NewFrame();
    while (true) {
        const int result = avcodec_receive_frame(m_decoder.get(), frame.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        if (result == AVERROR_INVALIDDATA) continue;
        CheckAv(result, "decode sound");
        TakeSamples(*frame);
        av_frame_unref(frame.get());
    }
}

AvHandle<AVFrame> AudioEncode::NewSamples(int count) const {
    auto samples = NewFrame();
    samples->nb_samples = count;
    samples->format = m_encoder->sample_fmt;
    samples->sample_rate = m_encoder->sample_rate;
    CheckAv(av_channel_layout_copy(&samples->ch_layout, &m_encoder->ch_layout), "set up the sound");
    CheckAv(av_frame_get_buffer(samples.get(), 0), "set up the sound");
    return samples;
}

void AudioEncode::TakeSamples(const AVFrame& decoded) {
    if (decoded.pts != AV_NOPTS_VALUE) FillGap(av_rescale_q(decoded.pts, m_timeBase, AVRational{1, 1000}));
    auto samples = NewSamples(std::max(decoded.nb_samples, 1));
    const int count = CheckAv(swr_convert(m_resampler.get(), samples->extended_data, samples->nb_samples,
                                          const_cast<const std::uint8_t**>(decoded.extended_data), decoded.nb_samples),
                              "convert sound");
    samples->nb_samples = count;
    Queue(*samples);
}

void AudioEncode::FillGap(std::int64_t startMs) {
    const int rate = m_encoder->sample_rate;
    std::int64_t missing = startMs * rate / 1000 - m_encoded - av_audio_fifo_size(m_queue.get());
    if (missing <= kGapMs * rate / 1000) return;
    while (missing > 0) {
        auto silence = NewSamples(static_cast<int>(std::min<std::int64_t>(missing, rate)));
        CheckAv(av_samples_set_silence(silence->extended_data, 0, silence->nb_samples, m_encoder->ch_layout.nb_channels,
                                       m_encoder->sample_fmt),
                "fill a gap");
        missing -= silence->nb_samples;
        Queue(*silence);
    }
}

void AudioEncode::Queue(const AVFrame& samples) {
    CheckAv(av_audio_fifo_write(m_queue.get(), reinterpret_cast<void**>(samples.extended_data), samples.nb_samples),
            "queue sound");
    EncodeQueued(false);
}

void AudioEncode::EncodeQueued(bool all) {
    const int least = all ? 1 : m_encoder->frame_size;
    while (av_audio_fifo_size(m_queue.get()) >= least) {
        auto samples = NewSamples(std::min(av_audio_fifo_size(m_queue.get()), m_encoder->frame_size));
        CheckAv(
            av_audio_fifo_read(m_queue.get(), reinterpret_cast<void**>(samples->extended_data), samples->nb_samples),
            "queue sound");
        samples->pts = m_encoded;
        m_encoded += samples->nb_samples;
        Encode(samples.get());
    }
}

void AudioEncode::Encode(AVFrame* samples) {
    CheckAv(avcodec_send_frame(m_encoder.get(), samples), "encode sound");
    while (true) {
        const int result = avcodec_receive_packet(m_encoder.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        CheckAv(result, "encode sound");
        m_output.Write(m_track, *m_packet, m_encoder->time_base);
    }
}

}  // namespace kestrum::media
