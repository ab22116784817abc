#include "media/worker/DeviceDesk.h"

#include "media/capture/CaptureError.h"
#include "media/worker/RecordingDesk.h"

namespace kestrum::media {

using protocol::PreviewResult;

PreviewResult DeviceDesk::OpenPreview(const protocol::Preview& request) {
    ClosePreview();
    try {
        m_meter = std::make_unique<SoundMeter>(request.soundSource, m_onLevel);
    } catch (const CaptureError&) {
        return PreviewResult::kNoSound;
    }
    try {
        if (!request.camera.name.empty()) OpenCamera(request);
        return PreviewResult::kBoth;
    } catch (const CaptureError&) {
        return PreviewResult::kNoVideo;
    }
}

void DeviceDesk::OpenCamera(const protocol::Preview& request) {
    if (request.window != 0)
        m_painter = std::make_unique<WindowPainter>(request.display, static_cast<std::uint32_t>(request.window));
    // A window that has gone is not drawn into any more; whoever had it closes the preview sooner or later.
    const auto onPicture = [this](const BgraPicture& picture, std::int64_t) {
        if (m_painter) m_painter->Draw(picture);
    };
    // A picture that stands still would pretend that the camera is there.
    const auto onChange = [this](bool isBack) {
        if (m_painter && !isBack) m_painter->Clear();
    };
    m_camera =
        std::make_unique<CameraThread>(ToCameraSettings(request.camera), CameraThread::Sinks{onPicture, onChange});
}

void DeviceDesk::ClosePreview() {
    m_camera.reset();
    m_painter.reset();
    m_meter.reset();
}

void DeviceDesk::StartTestRecord(const protocol::TestRecord& request) {
    m_testRecording.reset();
    m_testRecording = std::make_unique<TestRecording>(request.source, request.file);
}

void DeviceDesk::StopTestRecord() {
    m_testRecording.reset();
}

std::int64_t DeviceDesk::TestRecordMs() const {
    return m_testRecording ? m_testRecording->RecordedMs() : 0;
}

void DeviceDesk::StartTestPlay(const std::string& file) {
    m_testPlayback.reset();
    m_testPlayback = std::make_unique<TestPlayback>(file);
}

void DeviceDesk::StopTestPlay() {
    m_testPlayback.reset();
}

std::int64_t DeviceDesk::TestPlayMs() const {
    return m_testPlayback ? m_testPlayback->PlayedMs() : -1;
}

}  // namespace kestrum::media
