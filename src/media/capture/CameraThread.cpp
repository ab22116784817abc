#include "media/capture/CameraThread.h"

#include <chrono>
#include <utility>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"

namespace kestrum::media {
namespace {

constexpr int kReadMs = 100;
// A camera that has given nothing for so long counts as gone, although its device is still there.
constexpr std::int64_t kStallNs = 5 * kNsPerSecond;
constexpr std::int64_t kRetryNs = kNsPerSecond;
// Pictures of a camera that runs at exactly the rate wanted come a little early now and then.
constexpr std::int64_t kIntervalNs = kNsPerSecond / CameraThread::kPicturesPerSecond * 3 / 4;

}  // namespace

CameraThread::CameraThread(const CameraSettings& settings, Sinks sinks)
    : m_settings(settings),
      m_sinks(std::move(sinks)),
      m_camera(OpenCamera(settings.id, settings.width, settings.height)),
      m_lastNs(MonotonicNs()) {
    m_thread = std::thread([this] { Run(); });
}

CameraThread::~CameraThread() {
    m_stop = true;
    m_thread.join();
}

void CameraThread::Run() {
    BgraPicture picture(m_settings.width, m_settings.height);
    while (!m_stop) {
        try {
            if (!m_camera) Reopen();
            if (m_camera) Read(picture);
        } catch (const CaptureError&) {
            Lose();
        }
        if (!m_camera) std::this_thread::sleep_for(std::chrono::milliseconds(kReadMs));
    }
}

void CameraThread::Read(BgraPicture& picture) {
    const bool hasCome = m_camera->Read(picture, kReadMs);
    const std::int64_t now = MonotonicNs();
    if (!hasCome && now - m_lastNs > kStallNs) return Lose();
    if (!hasCome) return;
    m_lastNs = now;
    if (std::exchange(m_isLost, false)) m_sinks.onChange(true);
    if (now - m_passedNs < kIntervalNs) return;
    m_passedNs = now;
    m_sinks.onPicture(picture, now);
}

void CameraThread::Reopen() {
    if (MonotonicNs() < m_lastNs + kRetryNs) return;
    m_lastNs = MonotonicNs();
    m_camera = OpenCamera(m_settings.id, m_settings.width, m_settings.height);
}

void CameraThread::Lose() {
    m_camera.reset();
    m_lastNs = MonotonicNs();
    if (!std::exchange(m_isLost, true)) m_sinks.onChange(false);
}

}  // namespace kestrum::media
