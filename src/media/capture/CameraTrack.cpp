#include "media/capture/CameraTrack.h"

#include <utility>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/ColourConvert.h"

namespace kestrum::media {
namespace {

// A player that jumps to a slide shows the camera from the next of these on.
constexpr std::int64_t kKeyDistanceNs = 2 * kNsPerSecond;

VideoEncoderSettings EncoderFor(const CameraSettings& camera, bool headersInKeyFrames) {
    return {camera.width, camera.height, CameraThread::kPicturesPerSecond, headersInKeyFrames, false};
}

}  // namespace

CameraTrack::CameraTrack(const CameraSettings& settings, std::function<void(bool isBack)> onChange)
    : m_settings(settings),
      m_encoder(std::make_unique<VideoEncoder>(EncoderFor(settings, false))),
      m_picture(settings.width, settings.height),
      m_everything(settings.width, settings.height) {
    m_everything.MarkAll();
    const auto onPicture = [this](const BgraPicture& picture, std::int64_t takenNs) { Take(picture, takenNs); };
    m_thread = std::make_unique<CameraThread>(settings, CameraThread::Sinks{onPicture, std::move(onChange)});
}

CameraTrack::~CameraTrack() {
    Stop();
}

VideoTrackConfig CameraTrack::Config() const {
    return {m_settings.width, m_settings.height, m_encoder->AvcC()};
}

void CameraTrack::FitTo(const Bytes& avcC) {
    const std::lock_guard lock(m_mutex);
    if (avcC != m_encoder->AvcC()) m_encoder = std::make_unique<VideoEncoder>(EncoderFor(m_settings, true));
}

void CameraTrack::Start(PackageFeeder& feeder, PositionClock& clock) {
    const std::lock_guard lock(m_mutex);
    m_feeder = &feeder;
    m_clock = &clock;
}

void CameraTrack::Stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_feeder = nullptr;
    }
    m_thread.reset();
}

void CameraTrack::Take(const BgraPicture& picture, std::int64_t takenNs) {
    const std::lock_guard lock(m_mutex);
    if (!m_feeder || m_feeder->IsBehind()) return;
    ConvertArea(picture, m_picture, {0, 0, m_settings.width, m_settings.height});
    const bool isKey = m_lastKeyNs == 0 || takenNs >= m_lastKeyNs + kKeyDistanceNs;
    if (isKey) m_lastKeyNs = takenNs;
    const EncodedPicture encoded = m_encoder->Encode(m_picture, m_everything, isKey);
    m_feeder->PushWebcam(m_clock->PositionAt(takenNs), encoded.isKey,
                         Bytes(encoded.sample.begin(), encoded.sample.end()));
}

}  // namespace kestrum::media
