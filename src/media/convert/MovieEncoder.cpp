#include "media/convert/MovieEncoder.h"

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

void TakeColours(AVCodecContext& encoder, const AVCodecParameters& source) {
    // Scaling brings pictures of full range to the usual one.
    encoder.color_range = source.color_range == AVCOL_RANGE_JPEG ? AVCOL_RANGE_MPEG : source.color_range;
    encoder.colorspace = source.color_space;
    encoder.color_primaries = source.color_primaries;
    encoder.color_trc = source.color_trc;
}

}  // namespace

MovieEncoder::MovieEncoder(const AVStream& source, const VideoEncodeSettings& settings, KeyFramePlan plan,
                           Mp4Output& output)
    : m_plan(std::move(plan)), m_output(output), m_track(output.AddTrack()), m_packet(NewPacket()) {
    Open(source, settings);
    CheckAv(avcodec_parameters_from_context(m_track.codecpar, m_encoder.get()), "set up the picture track");
    m_track.time_base = kMilliseconds;
}

void MovieEncoder::Open(const AVStream& source, const VideoEncodeSettings& settings) {
    const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
    if (codec == nullptr) throw Error(ErrorKind::kIo, "This system's libavcodec has no H.264 encoder (libx264).", 0);
    m_encoder.reset(avcodec_alloc_context3(codec));
    if (!m_encoder) throw std::bad_alloc();
    m_encoder->width = settings.width;
    m_encoder->height = settings.height;
    m_encoder->pix_fmt = AV_PIX_FMT_YUV420P;
    m_encoder->time_base = kMilliseconds;
    m_encoder->framerate = source.avg_frame_rate.num > 0 ? source.avg_frame_rate : AVRational{30, 1};
    TakeColours(*m_encoder, *source.codecpar);
    m_encoder->max_b_frames = 0;
    m_encoder->gop_size = kKeyFrameInterval;
    m_encoder->thread_count = 0;
    m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    SetRateControl(*m_encoder, settings.kbps);
    av_opt_set(m_encoder->priv_data, "preset", "veryfast", 0);
    av_opt_set(m_encoder->priv_data, "forced-idr", "1", 0);
    CheckAv(avcodec_open2(m_encoder.get(), codec, nullptr), "open the H.264 encoder");
}

void MovieEncoder::Put(AvHandle<AVFrame> picture, std::int64_t pos, bool keyFrame) {
    RepeatLastBefore(pos);
    if (m_last && pos <= m_last->pts) return;  // two pictures within one millisecond
    const bool forced = m_plan.TakeAt(pos) || keyFrame;
    m_coverDue = m_coverDue && pos < kCoverMs;
    m_last = std::move(picture);
    m_last->pts = pos;
    m_last->pict_type = forced ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    Encode(m_last.get());
}

void MovieEncoder::Finish() {
    RepeatLastBefore(std::numeric_limits<std::int64_t>::max());
    Encode(nullptr);
}

/// The last picture, where an entry or the cover falls into the time that it stands.
void MovieEncoder::RepeatLastBefore(std::int64_t pos) {
    for (const std::int64_t entry : m_plan.TakeBefore(pos)) RepeatLastAt(entry, AV_PICTURE_TYPE_I);
    if (m_coverDue && kCoverMs < pos) RepeatLastAt(kCoverMs, AV_PICTURE_TYPE_NONE);
}

void MovieEncoder::RepeatLastAt(std::int64_t pos, AVPictureType type) {
    if (!m_last || pos <= m_last->pts) return;
    m_coverDue = m_coverDue && pos < kCoverMs;
    m_last->pts = pos;
    m_last->pict_type = type;
    Encode(m_last.get());
}

void MovieEncoder::Encode(AVFrame* picture) {
    CheckAv(avcodec_send_frame(m_encoder.get(), picture), "encode a picture");
    while (true) {
        const int result = avcodec_receive_packet(m_encoder.get(), m_packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
        CheckAv(result, "encode a picture");
        m_output.Write(m_track, *m_packet, kMilliseconds);
    }
}

}  // namespace kestrum::media
