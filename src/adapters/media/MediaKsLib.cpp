#include "adapters/media/MediaKsLib.h"

#include <filesystem>
#include <fstream>
#include <utility>

#include "adapters/media/AudioQuality.h"

namespace kestrum::adapters {

using host::FromUtf8;
using host::ToUtf8;
using wire::Kind;
using wire::Nothing;
using wire::Number;
using wire::Text;

namespace {

// Opening a package may mean recovering it first; finishing one is waited for as long as the caller says.
constexpr std::int32_t kStartTimeoutMs = 60'000;
constexpr std::int32_t kKeyFrameTimeoutMs = 5'000;
constexpr std::int32_t kMsPerTenth = 100;

std::int32_t StateOf(const wire::Failure& failure) {
    constexpr std::int32_t kDiskFullKind = 2, kNoDisplayKind = 0, kBadAreaKind = 1;
    const std::int32_t kind = failure.detail;
    if (failure.part == wire::FailedPart::kPackage && kind == kDiskFullKind) return host::encoder_state::kDiskFull;
    if (failure.part == wire::FailedPart::kCapture && (kind == kNoDisplayKind || kind == kBadAreaKind)) {
        return host::encoder_state::kScreenOverflow;
    }
    return host::encoder_state::kFileError;
}

wire::PackageFiles ToWire(const String& package, const host::StoredFiles& files) {
    return {ToUtf8(package), ToUtf8(files.projectFile), ToUtf8(files.cursorImage), ToUtf8(files.photo),
            ToUtf8(files.indexText)};
}

}  // namespace

MediaKsLib::MediaKsLib(WorkerLink& worker, IDrawingBoard* board, PixelSource pixels)
    : m_worker(worker), m_board(board), m_pixels(pixels) {}

// --- Recording -----------------------------------------------------------------------------------------------------

std::int32_t MediaKsLib::EncoderState() {
    if (!m_isRecording) {
        if (m_stateAtEnd != 0) return m_stateAtEnd;
        return m_worker.Ask<Number>(Kind::kHello, Nothing{}) ? 0 : host::encoder_state::kGone;
    }
    const bool isSame = m_worker.IsAlive() && m_worker.Generation() == m_recordingGeneration;
    if (!isSame) return host::encoder_state::kGone;
    const auto state = m_worker.Ask<wire::State>(Kind::kState, Nothing{});
    return state ? state->state : host::encoder_state::kGone;
}

std::int16_t MediaKsLib::EncoderSetFilename(const String& package, const String& projectFile, const String& indexText) {
    m_files = {ToUtf8(package), ToUtf8(projectFile), {}, {}, ToUtf8(indexText)};
    std::error_code failure;
    std::filesystem::create_directories(m_files.package + "._tmp", failure);
    return failure ? 0 : 1;
}

std::int16_t MediaKsLib::SetCaptureArea(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    m_area = PictureOf(left, top, right - left + 1, bottom - top + 1);
    return 1;
}

void MediaKsLib::SetCaptureFrameRate(std::int32_t framesPerSecond) {
    m_framesPerSecond = framesPerSecond;
}

void MediaKsLib::EnableRecSystemAudio(std::int32_t enable) {
    m_recordSystemSound = enable != 0;
}

bool MediaKsLib::OpenDevices() {
    const wire::Settings settings{
        m_area, m_framesPerSecond, ChosenSources(), 0, KbpsOfProject(m_files.projectFile), ChosenCamera()};
    if (settings.soundSources.empty()) return false;
    return m_worker.Ask<Nothing>(Kind::kOpen, settings).has_value();
}

void MediaKsLib::EncoderInitDevice() {
    m_devicesOpen = OpenDevices();
}

std::int32_t MediaKsLib::EncoderQueryDevice() {
    return m_devicesOpen || m_isRecording ? 1 : 0;
}

void MediaKsLib::EncoderCloseDevice() {
    if (m_devicesOpen) m_worker.Ask<Nothing>(Kind::kClose, Nothing{});
    m_devicesOpen = false;
}

std::int16_t MediaKsLib::EncoderStart(std::int32_t) {
    m_stateAtEnd = 0;
    const auto recovery = m_worker.Ask<wire::Recovery>(Kind::kStart, m_files, kStartTimeoutMs);
    m_devicesOpen = false;
    if (!recovery) {
        m_stateAtEnd = m_worker.IsAlive() ? StateOf(m_worker.LastFailure()) : host::encoder_state::kGone;
        return 0;
    }
    NoteRecovery(*recovery);
    m_isRecording = true;
    m_recordingGeneration = m_worker.Generation();
    return 1;
}

void MediaKsLib::EncoderStop(std::int32_t timeout) {
    if (!m_isRecording) return;
    m_isRecording = false;
    // The package of a worker that died is not finished: its next opening recovers it, and says so.
    const bool isSame = m_worker.IsAlive() && m_worker.Generation() == m_recordingGeneration;
    const bool isFinished = isSame && m_worker.Ask<Nothing>(Kind::kStop, Nothing{}, timeout * kMsPerTenth);
    m_stateAtEnd = isFinished ? 0 : host::encoder_state::kFileError;
}

std::int32_t MediaKsLib::AddKeyFrame() {
    if (!m_isRecording || !m_worker.IsAlive()) return -1;
    const auto position = m_worker.Ask<Number>(Kind::kKeyFrame, Nothing{}, kKeyFrameTimeoutMs);
    return position ? static_cast<std::int32_t>(position->value) : -1;
}

bool MediaKsLib::WriteIndexJournal(const String& journal) {
    if (!m_isRecording || !m_worker.IsAlive()) return false;
    const auto kept = m_worker.Ask<Number>(Kind::kJournal, Text{ToUtf8(journal)});
    return kept && kept->value != 0;
}

void MediaKsLib::SetVolumeMeter(std::function<void(std::int32_t)> onLevel) {
    m_worker.OnLevel(std::move(onLevel));
}

wire::Probe MediaKsLib::PictureOf(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height) const {
    return {{}, left, top, width, height, m_pixels == PixelSource::Cast};
}

std::optional<String> MediaKsLib::AskForScreen() {
    if (m_pixels == PixelSource::Display) return std::nullopt;
    m_asking = true;
    const bool isGiven = m_worker.AskPumping<Nothing>(Kind::kCast, Nothing{}).has_value();
    m_asking = false;
    if (isGiven) return std::nullopt;
    const String sentence = FromUtf8(m_worker.LastFailure().sentence);
    return sentence.empty() ? u"The media worker ended while it asked for the screen." : sentence;
}

void MediaKsLib::LeaveQuestion() {
    if (m_asking) m_worker.Ask<Nothing>(Kind::kCancel, Nothing{});
}

bool MediaKsLib::IsPictureUniform(const host::Rect& area) {
    const wire::Probe probe = PictureOf(area.left, area.top, area.right - area.left, area.bottom - area.top);
    const auto answer = m_worker.Ask<wire::Uniformity>(Kind::kProbe, probe);
    return answer && answer->isUniform != 0;
}

// --- Pen, canvas, whiteboard ---------------------------------------------------------------------------------------

void MediaKsLib::OpenSheet(IDrawingBoard::Sheet sheet) {
    if (m_board) m_board->Open(sheet, {m_area.x, m_area.y, m_area.x + m_area.width, m_area.y + m_area.height});
}

void MediaKsLib::CloseSheet(IDrawingBoard::Sheet sheet) {
    if (m_board) m_board->Close(sheet);
}

std::int32_t MediaKsLib::IsSheetOpen(IDrawingBoard::Sheet sheet) const {
    return m_board && m_board->IsOpen(sheet) ? 1 : 0;
}

void MediaKsLib::SetPenAttr(std::int32_t width, std::int32_t colour) {
    if (m_board) m_board->SetPen(width, colour);
}

// --- The package ---------------------------------------------------------------------------------------------------

std::int32_t MediaKsLib::AskNumber(Kind kind, const String& package, std::int32_t fallback) {
    const auto answer = m_worker.Ask<Number>(kind, Text{ToUtf8(package)});
    return answer ? static_cast<std::int32_t>(answer->value) : fallback;
}

std::int32_t MediaKsLib::GetLength(const String& package) {
    return AskNumber(Kind::kLength, package, 0);
}

std::int32_t MediaKsLib::GetFileHeaderDim(const String& package, std::int32_t& width, std::int32_t& height) {
    const auto size = m_worker.Ask<wire::Size>(Kind::kFrameSize, Text{ToUtf8(package)});
    if (!size || size->width <= 0) return 0;
    width = size->width;
    height = size->height;
    return 1;
}

std::int32_t MediaKsLib::GetKeyframeDim(const String& package, std::int32_t& width, std::int32_t& height) {
    return GetFileHeaderDim(package, width, height);
}

std::int32_t MediaKsLib::IsEmptyProject(const String& package) {
    return AskNumber(Kind::kEmptiness, package, 0);
}

std::int32_t MediaKsLib::GetExtendDataFromProject(const String& package, const host::StoredFiles& targets) {
    const auto answer = m_worker.Ask<Number>(Kind::kExtract, ToWire(package, targets));
    return answer && answer->value != 0 ? 0 : -1;
}

std::int32_t MediaKsLib::SetExtendDataInProject(const String& package, const host::StoredFiles& sources) {
    const auto recovery = m_worker.Ask<wire::Recovery>(Kind::kStore, ToWire(package, sources));
    if (!recovery) return -1;
    NoteRecovery(*recovery);
    return 0;
}

std::int32_t MediaKsLib::GetECTState(const String& package) {
    return AskNumber(Kind::kEncrypted, package, -1);
}

std::int32_t MediaKsLib::verifyKsFile(const String& package) {
    const auto answer = m_worker.Ask<Number>(Kind::kVerifyQuick, Text{ToUtf8(package)});
    if (!answer) return 0;
    const auto soundness = static_cast<wire::Soundness>(answer->value);
    return soundness == wire::Soundness::kSound || soundness == wire::Soundness::kRecording;
}

std::int32_t MediaKsLib::verifyWholeKsFile(const String& package) {
    const auto verdict = m_worker.AskPumping<wire::Verdict>(Kind::kVerifyWhole, Text{ToUtf8(package)});
    if (!verdict) return 0;
    NoteRecovery(verdict->recovery);
    return verdict->soundness == wire::Soundness::kSound || verdict->soundness == wire::Soundness::kRecording;
}

void MediaKsLib::NoteRecovery(const wire::Recovery& recovery) {
    if (recovery.happened == 0) return;
    constexpr std::int64_t kMsPerSecond = 1000, kSecondsPerMinute = 60;
    const std::int64_t seconds = recovery.lengthMs / kMsPerSecond;
    const std::string rest = std::to_string(seconds % kSecondsPerMinute);
    m_lastRecovery = FromUtf8("Recovered: " + std::to_string(recovery.entries) +
                              (recovery.entries == 1 ? " index entry" : " index entries") + " and " +
                              std::to_string(seconds / kSecondsPerMinute) + ":" + (rest.size() < 2 ? "0" : "") + rest +
                              " minutes of media.");
}

std::int32_t MediaKsLib::GetFileFormatVersion(const String& package) {
    return AskNumber(Kind::kFormatVersion, package, 0);
}

std::int32_t MediaKsLib::ListIndex(const String& package, const String& textFile) {
    const auto keys = m_worker.Ask<wire::NumberList>(Kind::kKeyFrames, Text{ToUtf8(package)});
    if (!keys) return -1;
    std::string lines;
    for (const auto position : keys->values) lines += std::to_string(position) + "\r\n";
    std::ofstream file(ToUtf8(textFile), std::ios::binary);
    file << lines << std::flush;
    return file ? 0 : -1;
}

std::int32_t MediaKsLib::GetVideoAttribute(const String& package) {
    return AskNumber(Kind::kVideoAttribute, package, 0);
}

std::int32_t MediaKsLib::GetAudioBitrate(const String& package) {
    return QualityOfKbps(AskNumber(Kind::kAudioBitrate, package, 0));
}

std::int32_t MediaKsLib::DrawImageToFit(const String& target, const String& source) {
    const wire::TwoPaths paths{ToUtf8(target), ToUtf8(source)};
    return m_worker.Ask<Nothing>(Kind::kDrawFit, paths) ? 0 : -1;
}

}  // namespace kestrum::adapters
