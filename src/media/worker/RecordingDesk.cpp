#include "media/worker/RecordingDesk.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace kestrum::media {
namespace {

constexpr std::int32_t kGone = -1;

RecorderSettings ToSettings(const protocol::Settings& from) {
    RecorderSettings settings;
    settings.display = from.picture.display;
    settings.area = {from.picture.x, from.picture.y, from.picture.width, from.picture.height};
    settings.framesPerSecond = from.framesPerSecond;
    settings.soundSources = from.soundSources;
    settings.stereo = from.stereo != 0;
    settings.audioKbps = from.audioKbps;
    settings.camera = ToCameraSettings(from.camera);
    return settings;
}

}  // namespace

StoredPaths ToStoredPaths(const protocol::PackageFiles& files) {
    return {files.projectFile, files.cursorImage, files.photo, files.indexText};
}

CameraSettings ToCameraSettings(const protocol::CameraChoice& choice) {
    // The encoder takes even sides only.
    return {choice.name, std::max(choice.width & ~1, 2), std::max(choice.height & ~1, 2)};
}

protocol::Recovery ToRecovery(const std::optional<RecoveryReport>& report) {
    if (!report) return {};
    return {1, report->entries, report->entriesWithoutMedia, report->lengthMs, report->bytesCut};
}

RecordingDesk::RecordingDesk(CastDesk& casts, std::function<void(int)> onLevel, DeviceChangeSink onDeviceChange)
    : m_casts(casts), m_onLevel(std::move(onLevel)), m_onDeviceChange(std::move(onDeviceChange)) {}

void RecordingDesk::Open(const protocol::Settings& settings) {
    if (m_isRecording) throw std::logic_error("A recording runs already.");
    RecorderSettings chosen = ToSettings(settings);
    if (settings.picture.fromCast != 0) chosen.cast = m_casts.OpenSoon();
    auto recorder = std::make_unique<Recorder>(std::move(chosen), m_onLevel);
    recorder->OnDeviceChange(m_onDeviceChange);
    recorder->OpenDevices();
    m_recorder = std::move(recorder);
}

void RecordingDesk::Close() {
    if (m_isRecording) return;
    m_recorder.reset();
    m_casts.Close();
}

protocol::Recovery RecordingDesk::Start(const protocol::PackageFiles& files) {
    if (!m_recorder || m_isRecording) throw std::logic_error("A recording can be started once after its devices.");
    try {
        m_recorder->Start(files.package, ToStoredPaths(files));
    } catch (...) {
        // Half a start must not go on holding the package or the sound.
        m_recorder.reset();
        m_casts.Close();
        throw;
    }
    m_package = files.package;
    m_isRecording = true;
    m_stateAfterStop = 0;
    return ToRecovery(m_recorder->Recovered());
}

std::int64_t RecordingDesk::KeyFrame() {
    return m_isRecording ? m_recorder->AddKeyFrame() : -1;
}

bool RecordingDesk::Journal(const std::string& text) {
    return m_isRecording && m_recorder->WriteJournal(text);
}

protocol::State RecordingDesk::State() const {
    protocol::State answer;
    answer.state = m_stateAfterStop;
    if (!m_isRecording) return answer;
    const RecorderStatistics statistics = m_recorder->Statistics();
    answer.state = static_cast<std::int32_t>(m_recorder->State());
    answer.writtenMs = statistics.writtenMs;
    answer.pictures = statistics.pictures;
    answer.keyFrames = statistics.keyFrames;
    answer.videoBytes = statistics.videoBytes;
    answer.audioBytes = statistics.audioBytes;
    answer.soundComplete = statistics.soundComplete;
    return answer;
}

void RecordingDesk::Stop() {
    if (!m_isRecording) return;
    m_isRecording = false;
    m_casts.Close();
    const auto recorder = std::move(m_recorder);
    try {
        recorder->Stop();
        m_stateAfterStop = 0;
    } catch (const Error&) {
        m_stateAfterStop = static_cast<std::int32_t>(EncoderState::kFileError);
        throw;
    }
}

void RecordingDesk::Abandon() {
    if (!m_isRecording) return;
    try {
        Stop();
    } catch (const Error&) {
        // The next opening of the package recovers it; there is nobody left to tell.
    }
    m_stateAfterStop = kGone;
}

protocol::Recovery RecordingDesk::Store(const protocol::PackageFiles& files) {
    const StoredFiles stored = LoadFiles(ToStoredPaths(files));
    std::error_code ignored;
    if (m_isRecording && std::filesystem::equivalent(files.package, m_package, ignored)) {
        m_recorder->StoreFiles(stored);
        return {};
    }
    return ToRecovery(WriteStored(files.package, stored));
}

}  // namespace kestrum::media
