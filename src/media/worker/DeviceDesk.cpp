#include "media/worker/DeviceDesk.h"

#include "media/capture/CaptureError.h"

namespace kestrum::media {

using protocol::PreviewResult;

PreviewResult DeviceDesk::OpenPreview(const protocol::Preview& request) {
    ClosePreview();
    try {
        m_meter = std::make_unique<SoundMeter>(request.soundSource, m_onLevel);
    } catch (const CaptureError&) {
        return PreviewResult::kNoSound;
    }
    return request.camera.name.empty() ? PreviewResult::kBoth : PreviewResult::kNoVideo;
}

void DeviceDesk::ClosePreview() {
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
