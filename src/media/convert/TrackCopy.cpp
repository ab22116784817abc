#include "media/convert/TrackCopy.h"

#include <algorithm>
#include <cstdlib>

namespace kestrum::media {

namespace {

constexpr int kAacFrame = 1024;

AVStream& AddCopiedTrack(const AVStream& source, Mp4Output& output, AVRational timeBase) {
    AVStream& track = output.AddTrack();
    CheckAv(avcodec_parameters_copy(track.codecpar, source.codecpar), "copy a track");
    track.codecpar->codec_tag = 0;  // the Matroska tag means nothing in MP4
    track.time_base = timeBase;
    return track;
}

}  // namespace

VideoCopy::VideoCopy(const AVStream& source, Mp4Output& output)
    : m_timeBase(source.time_base), m_output(output), m_track(AddCopiedTrack(source, output, source.time_base)) {}

void VideoCopy::Take(AVPacket& packet) {
    if (packet.dts == AV_NOPTS_VALUE) packet.dts = packet.pts;
    m_output.Write(m_track, packet, m_timeBase);
}

AudioCopy::AudioCopy(const AVStream& source, Mp4Output& output)
    : m_timeBase(source.time_base),
      m_sampleBase{1, source.codecpar->sample_rate},
      m_output(output),
      m_track(AddCopiedTrack(source, output, AVRational{1, source.codecpar->sample_rate})) {}

void AudioCopy::Take(AVPacket& packet) {
    const std::int64_t given = av_rescale_q(packet.pts, m_timeBase, m_sampleBase);
    const std::int64_t tolerance = m_sampleBase.den / 200;  // 5 ms
    // The first unit may begin before 0: what an encoder needs to get going.
    const std::int64_t expected = m_next.value_or(given);
    const bool gap = std::llabs(given - expected) > tolerance;
    packet.pts = gap ? std::max(given, expected) : expected;
    packet.dts = packet.pts;
    packet.duration = kAacFrame;
    m_next = packet.pts + kAacFrame;
    m_output.Write(m_track, packet, m_sampleBase);
}

}  // namespace kestrum::media
