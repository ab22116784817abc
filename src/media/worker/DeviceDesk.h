// The devices of the worker beside a recording: preview, mixer, audio test. Decides what is open at a time: one
// preview, one test recording, one test playback; a new one takes the place of the old one.
//
// One thread, but for the level sink, which is called on a thread of the preview.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "media/capture/CameraThread.h"
#include "media/capture/SoundMeter.h"
#include "media/capture/SoundTest.h"
#include "media/capture/WindowPainter.h"
#include "media/protocol/Messages.h"

namespace kestrum::media {

class DeviceDesk {
  public:
    explicit DeviceDesk(std::function<void(int)> onLevel) : m_onLevel(std::move(onLevel)) {}

    /// Opens what is asked for in the place of what was open.
    protocol::PreviewResult OpenPreview(const protocol::Preview& request);
    void ClosePreview();

    void StartTestRecord(const protocol::TestRecord& request);
    void StopTestRecord();
    std::int64_t TestRecordMs() const;
    void StartTestPlay(const std::string& file);
    void StopTestPlay();
    /// -1 at the end, or if nothing plays.
    std::int64_t TestPlayMs() const;

  private:
    void OpenCamera(const protocol::Preview& request);

    const std::function<void(int)> m_onLevel;
    std::unique_ptr<SoundMeter> m_meter;
    std::unique_ptr<WindowPainter> m_painter;  ///< outlives the camera's thread
    std::unique_ptr<CameraThread> m_camera;
    std::unique_ptr<TestRecording> m_testRecording;
    std::unique_ptr<TestPlayback> m_testPlayback;
};

}  // namespace kestrum::media
