#include "media/convert/VideoMix.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kestrum::media {

namespace {

/// How far the tracks of a package lie out of order at most, ms; a recorder writes every 100.
constexpr std::int64_t kOutOfOrderMs = 500;
/// A webcam that has given no picture for so long was off: its last one must not stand there to the end, ms.
constexpr std::int64_t kCameraStaysMs = 3000;

int Even(int value) {
    return value / 2 * 2;
}

void CopyPlane(const AVFrame& from, AVFrame& to, int plane, int left, int top) {
    const int shift = plane == 0 ? 0 : 1;
    const auto bytes = static_cast<std::size_t>(from.width >> shift);
    for (int y = 0; y < from.height >> shift; ++y)
        std::copy_n(from.data[plane] + y * from.linesize[plane], bytes,
                    to.data[plane] + ((top >> shift) + y) * to.linesize[plane] + (left >> shift));
}

AvHandle<AVFrame> Copied(const AVFrame& picture) {
    auto copy = NewFrame();
    copy->format = picture.format;
    copy->width = picture.width;
    copy->height = picture.height;
    CheckAv(av_frame_get_buffer(copy.get(), 0), "make a picture");
    CheckAv(av_frame_copy(copy.get(), &picture), "copy a picture");
    return copy;
}

}  // namespace

CameraArea FitInto(const CameraArea& area, int width, int height) {
    CameraArea fit;
    fit.width = Even(std::min(area.width, width));
    fit.height = Even(std::min(area.height, height));
    fit.left = Even(std::clamp(area.left, 0, width - fit.width));
    fit.top = Even(std::clamp(area.top, 0, height - fit.height));
    return fit.width > 0 && fit.height > 0 ? fit : CameraArea{};
}

VideoMix::VideoMix(const Sources& sources, const CameraArea& area, const VideoEncodeSettings& settings,
                   KeyFramePlan plan, Mp4Output& output)
    : m_cameraTrack(sources.camera.index),
      m_area(area),
      m_screenDecoder(sources.screen, PictureDecoder::Delay::kNone),
      m_cameraDecoder(sources.camera, PictureDecoder::Delay::kNone),
      m_screenScaler(settings.width, settings.height),
      m_cameraScaler(area.width, area.height),
      m_encoder(sources.screen, settings, std::move(plan), output) {}

void VideoMix::Take(AVPacket& packet) {
    Decode(&packet, packet.stream_index == m_cameraTrack);
    ShowUntil(m_newest - kOutOfOrderMs);
}

void VideoMix::Finish(std::int64_t lengthMs) {
    Decode(nullptr, false);
    Decode(nullptr, true);
    ShowUntil(std::numeric_limits<std::int64_t>::max());
    HideStaleCamera(lengthMs);
    m_encoder.Finish();
}

void VideoMix::Decode(const AVPacket* packet, bool camera) {
    PictureDecoder& decoder = camera ? m_cameraDecoder : m_screenDecoder;
    decoder.Decode(packet, [&](AVFrame& picture, std::int64_t pos) { Wait(picture, pos, camera); });
}

void VideoMix::Wait(const AVFrame& picture, std::int64_t pos, bool camera) {
    m_newest = std::max(m_newest, pos);
    Waiting change{camera, !camera && picture.key_frame != 0, nullptr};
    change.picture = camera ? m_cameraScaler.Fill(picture) : m_screenScaler.Stretch(picture);
    m_waiting.emplace(pos, std::move(change));
}

void VideoMix::ShowUntil(std::int64_t pos) {
    while (!m_waiting.empty() && m_waiting.begin()->first <= pos) {
        auto next = m_waiting.extract(m_waiting.begin());
        Show(std::move(next.mapped()), next.key());
    }
}

void VideoMix::Show(Waiting change, std::int64_t pos) {
    HideStaleCamera(pos);
    if (change.camera) {
        m_camera = std::move(change.picture);
        m_cameraPos = pos;
    } else {
        m_screen = std::move(change.picture);
    }
    PutMixed(pos, change.keyFrame);
}

void VideoMix::HideStaleCamera(std::int64_t pos) {
    if (!m_camera || pos <= m_cameraPos + kCameraStaysMs) return;
    m_camera.reset();
    PutMixed(m_cameraPos + kCameraStaysMs, false);
}

void VideoMix::PutMixed(std::int64_t pos, bool keyFrame) {
    if (!m_screen) return;
    auto mixed = Copied(*m_screen);
    for (int plane = 0; m_camera && plane < 3; ++plane) CopyPlane(*m_camera, *mixed, plane, m_area.left, m_area.top);
    m_encoder.Put(std::move(mixed), pos, keyFrame);
}

}  // namespace kestrum::media
