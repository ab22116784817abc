#include "media/convert/VideoEncode.h"

extern "C" {
#include <libavutil/opt.h>
}

#include <limits>
#include <new>
#include <utility>

#include "media/package/Error.h"

namespace kestrum::media {

namespace {

constexpr AVRational kMilliseconds{1, 1000};
/// x264's quality number for an unlimited bitrate: lecture text stays sharp (SSIM 0.9967 on recorded slides).
constexpr const char* kConstantQuality = "21";
/// Pictures between two key frames at most, where neither an entry nor the recording asks for one.
constexpr int kKeyFrameInterval = 300;

void SetRateControl(AVCodecContext& encoder, int kbps) {
    if (kbps <= 0) {
        av_opt_set(encoder.priv_data, "crf", kConstantQuality, 0);
        return;
    }
    encoder.bit_rate = std::int64_t{1000} * kbps;
    encoder.rc_max_rate = 2 * encoder.bit_rate;
    encoder.rc_buffer_size = static_cast<int>(2 * encoder.bit_rate);
}

}  // namespace

VideoEncode::VideoEncode(const AVStream& source, const VideoEncodeSettings& settings, KeyFramePlan plan,
                         Mp4Output& output)
    : m_timeBase(source.time_base),
      m_plan(std::move(plan)),
      m_output(output),
      m_track(output.AddTrack()),
      m_decoder(OpenDecoder(source)),
      m_packet(NewPacket()) {
    OpenEncoder(source, settings);
    CheckAv(avcodec_parameters_from_context(m_track.codecpar, m_encoder.get()), "set up the picture track");
    m_track.time_base = kMilliseconds;
}

void VideoEncode::OpenEncoder(const AVStream& source, const VideoEncodeSettings& settings) {
    const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
    if (codec == nullptr) throw Error(ErrorKind::kIo, "This system's libavcodec has no H.264 encoder (libx264).", 0);
    m_encoder.reset(avcodec_alloc_context3(codec));
    if (!m_encoder) throw std::bad_alloc();
    m_encoder->width = settings.width;
    m_encoder->height = settings.height;
    m_encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    m_encoder->time_base = kMilliseconds;
    m_encoder->framerate = source.avg_frame_rate.num > 0 ? source.avg_frame_rate : AVRational{30, 1};
    m_encoder->color_range = source.codecpar->color_range;
    m_encoder->colorspace = source.codecpar->color_space;
    m_encoder->color_primaries = source.codecpar->color_primaries;
    m_encoder->color_trc = source.codecpar->color_trc;
    m_encoder->max_b_frames = 0;
    m_encoder->gop_size = kKeyFrameInterval;
    m_encoder->thread_count = 0;
    m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    SetRateControl(*m_encoder, settings.kbps);
    av_opt_set(m_encoder->priv_data, "preset", "veryfast", 0);
    av_opt_set(m_encoder->priv_data, "forced-idr", "1", 0);
    CheckAv(avcodec_open2(m_encoder.get(), codec, nullptr), "open the H.264 encoder");
}

void VideoEncode::Take(AVPacket& packet) {
    Decode(&packet);
}

void VideoEncode::Finish() {
    Decode(nullptr);
    for (const std::int64_t pos : m_plan.TakeBefore(std::numeric_limits<std::int64_t>::max())) RepeatLastAt(pos);
    RepeatLastAt(kCoverMs);
    Encode(nullptr);
}

void VideoEncode::Decode(const AVPacket* packet) {
    const int sent = avcodec_send_packet(m_decoder.get(), packet);
    // One damaged picture must not cost the lecture: the one before stays on screen instead.
    if (sent != AVERROR_INVALIDDATA) CheckAv(sent, "decode a picture");
    auto frame = NewFrame();
    while (true) {
        const int result = avcodec_receive_frame(m_decoder.get(), frame.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        if (result == AVERROR_INVALIDDATA) continue;
        CheckAv(result, "decode a picture");
        TakePicture(*frame);
        av_frame_unref(frame.get());
    }
}

void VideoEncode::TakePicture(AVFrame& decoded) {
    const std::int64_t stamp = decoded.pts != AV_NOPTS_VALUE ? decoded.pts : decoded.best_effort_timestamp;
    if (stamp == AV_NOPTS_VALUE) return;
    const std::int64_t pos = av_rescale_q(stamp, m_timeBase, kMilliseconds);
    for (const std::int64_t entry : m_plan.TakeBefore(pos)) RepeatLastAt(entry);
    if (m_last && pos <= m_last->pts) return;  // two pictures within one millisecond
    const bool forced = m_plan.TakeAt(pos) || decoded.key_frame != 0;
    m_last = Scaled(decoded);
    m_last->pts = pos;
    m_last->pict_type = forced ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    Encode(m_last.get());
}

AvHandle<AVFrame> VideoEncode::Scaled(const AVFrame& decoded) {
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), decoded.width, decoded.height,
                                        static_cast<AVPixelFormat>(decoded.format), m_encoder->width, m_encoder->height,
                                        m_encoder->pix_fmt, SWS_BICUBIC, nullptr, nullptr, nullptr));
    if (!m_scaler) throw std::bad_alloc();
    auto picture = NewFrame();
    CheckAv(sws_scale_frame(m_scaler.get(), picture.get(), &decoded), "scale a picture");
    return picture;
}

void VideoEncode::RepeatLastAt(std::int64_t pos) {
    if (!m_last || pos <= m_last->pts) return;
    m_last->pts = pos;
    m_last->pict_type = AV_PICTURE_TYPE_I;
    Encode(m_last.get());
}

void VideoEncode::Encode(AVFrame* picture) {
    CheckAv(avcodec_send_frame(m_encoder.get(), picture), "encode a picture");
    Drain();
}

void VideoEncode::Drain() {
    while (true) {
        const int result = avcodec_receive_packet(m_encoder.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        CheckAv(result, "encode a picture");
        m_output.Write(m_track, *m_packet, kMilliseconds);
    }
}

}  // namespace kestrum::media
