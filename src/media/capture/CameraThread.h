// A camera that is read until it is no longer wanted. Decides how many pictures a second are passed on, and what
// happens when the camera goes: it is looked for once a second, and taken again when it is back.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "media/capture/Camera.h"

namespace kestrum::media {

/// A camera by its id and the size that its pictures are brought to, even sides.
struct CameraSettings {
    std::string id;  ///< empty: no camera
    int width = 0;
    int height = 0;
};

class CameraThread {
  public:
    static constexpr int kPicturesPerSecond = 15;

    /// What becomes of the pictures; all calls come from the camera's thread.
    struct Sinks {
        std::function<void(const BgraPicture& picture, std::int64_t takenNs)> onPicture;
        /// The camera was lost, or has given a picture again.
        std::function<void(bool isBack)> onChange;
    };

    /// Opens the camera. Throws CaptureError (kNoCamera).
    CameraThread(const CameraSettings& settings, Sinks sinks);
    ~CameraThread();
    CameraThread(const CameraThread&) = delete;
    CameraThread& operator=(const CameraThread&) = delete;

  private:
    void Run();
    void Read(BgraPicture& picture);
    void Reopen();
    void Lose();

    const CameraSettings m_settings;
    const Sinks m_sinks;
    std::unique_ptr<Camera> m_camera;
    bool m_isLost = false;
    std::int64_t m_lastNs = 0;    ///< the last picture, or the moment of opening
    std::int64_t m_passedNs = 0;  ///< the last picture passed on
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

}  // namespace kestrum::media
