// The camera of a recording: its pictures, as H.264, at their places in the package's webcam track. Nothing of it can
// hold up or end the recording.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "media/capture/CameraThread.h"
#include "media/capture/PackageFeeder.h"
#include "media/capture/PositionClock.h"
#include "media/capture/VideoEncoder.h"

namespace kestrum::media {

class CameraTrack {
  public:
    /// Opens the camera, whose pictures are thrown away until Start. `onChange` is called on the camera's thread.
    /// Throws CaptureError (kNoCamera, kEncoder).
    CameraTrack(const CameraSettings& settings, std::function<void(bool isBack)> onChange);
    ~CameraTrack();
    CameraTrack(const CameraTrack&) = delete;
    CameraTrack& operator=(const CameraTrack&) = delete;

    /// For the header of a new package.
    VideoTrackConfig Config() const;
    /// For a package that has a webcam track with these parameter sets.
    void FitTo(const Bytes& avcC);
    /// From now on pictures go into the file. Both outlive this object, or the next Stop.
    void Start(PackageFeeder& feeder, PositionClock& clock);
    /// No picture comes any more when it returns.
    void Stop();

  private:
    void Take(const BgraPicture& picture, std::int64_t takenNs);

    const CameraSettings m_settings;
    std::mutex m_mutex;  ///< of all that follows but the thread
    std::unique_ptr<VideoEncoder> m_encoder;
    I420Picture m_picture;
    ChangeMap m_everything;
    PackageFeeder* m_feeder = nullptr;
    PositionClock* m_clock = nullptr;
    std::int64_t m_lastKeyNs = 0;
    std::unique_ptr<CameraThread> m_thread;
};

}  // namespace kestrum::media
