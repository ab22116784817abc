#include "media/worker/WorkerServer.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <utility>

#include "media/capture/Camera.h"
#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/Screen.h"
#include "media/capture/SoundMixer.h"
#include "media/capture/SoundSources.h"
#include "media/convert/DrawFit.h"
#include "media/package/Inspection.h"
#include "media/package/Package.h"

namespace kestrum::media {
namespace {

using protocol::Channel;
using protocol::Kind;
using protocol::Message;
using protocol::Nothing;
using protocol::Number;
using protocol::Text;

// A worker asked to end by the system answers on for so long, since the program that started it is being asked too and
// wants to hear how the recording ended.
constexpr std::int64_t kFarewellNs = 20 * kNsPerSecond;

/// The exception in flight as an answer.
protocol::Failure CurrentFailure() {
    using protocol::FailedPart;
    try {
        throw;
    } catch (const Error& error) {
        return {FailedPart::kPackage, static_cast<std::int32_t>(error.kind), error.what()};
    } catch (const CaptureError& error) {
        return {FailedPart::kCapture, static_cast<std::int32_t>(error.kind), error.what()};
    } catch (const protocol::WireError& error) {
        return {FailedPart::kRequest, 0, error.what()};
    } catch (const std::logic_error& error) {
        return {FailedPart::kRequest, 0, error.what()};
    } catch (const std::exception& error) {
        return {FailedPart::kOther, 0, error.what()};
    }
}

protocol::SoundList AskSound() {
    protocol::SoundList list;
    for (const auto& source : ListSoundSources()) {
        list.devices.push_back({source.name, source.description, source.isSystemSound, source.isDefault});
    }
    return list;
}

protocol::CameraList AskCameras() {
    protocol::CameraList list;
    for (const auto& camera : ListCameras()) list.cameras.push_back({camera.id, camera.description});
    return list;
}

protocol::Volume ToWire(const SourceVolume& volume) {
    return {volume.percent, volume.isMuted};
}

protocol::Uniformity AskUniformity(CastDesk& casts, const protocol::Probe& probe) {
    const auto cast = probe.fromCast != 0 ? casts.OpenSoon() : nullptr;
    const Uniformity found = ProbePicture(probe.display, {probe.x, probe.y, probe.width, probe.height}, cast);
    return {found.isUniform, static_cast<std::int32_t>(found.colour)};
}

protocol::Size AskSize(const std::string& path) {
    const auto size = FrameSize(path);
    return size ? protocol::Size{size->width, size->height} : protocol::Size{};
}

protocol::Verdict ToVerdict(const VerifyResult& result) {
    return {static_cast<protocol::Soundness>(result.soundness), result.cancelled, ToRecovery(result.recovered)};
}

protocol::Inspection InspectPackage(const protocol::InspectRequest& request, const Progress& progress,
                                    const Cancel& cancel) {
    const auto thoroughness = request.everything ? Thoroughness::kEverything : Thoroughness::kHeadAndTail;
    const Inspection found = Inspect(request.package, thoroughness, progress, cancel);
    protocol::Inspection answer{static_cast<std::int32_t>(found.kind),
                                found.reason,
                                static_cast<protocol::Soundness>(found.soundness),
                                found.formatVersion,
                                found.holdsMedia,
                                found.hasProject,
                                found.entriesWait,
                                found.lengthMs,
                                found.headLengthMs,
                                found.keyFrames,
                                {},
                                {},
                                found.cancelled};
    for (const ChapterMark& chapter : found.chapters) answer.chapters.push_back({chapter.ms, chapter.title});
    for (const DamagedPiece& piece : found.damages)
        answer.damages.push_back({static_cast<std::int32_t>(piece.kind), piece.beginMs, piece.endMs, piece.bytes});
    return answer;
}

int BlockedSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

}  // namespace

WorkerServer::WorkerServer(int socket)
    : m_channel(socket),
      m_desk(
          m_casts, [this](int level) { SendLevel(level); },
          [this](const DeviceChange& change) { SendDeviceChange(change); }),
      m_devices([this](int level) { SendLevel(level); }) {
    AddRecordingHandlers();
    AddDeviceHandlers();
    AddPackageHandlers();
}

void WorkerServer::SendLevel(int level) {
    m_channel.SendIfRoom(Channel::Make(Kind::kLevel, 0, Number{level}));
}

void WorkerServer::SendDeviceChange(const DeviceChange& change) {
    m_channel.Send(
        Channel::Make(Kind::kDevice, 0, protocol::DeviceChange{change.name, change.isCamera, change.isBack}));
}

template <typename Request, typename Function>
void WorkerServer::On(Kind kind, Function function) {
    m_handlers[kind] = [function = std::move(function)](const std::string& body) {
        const auto request = protocol::Unpack<Request>(body);
        if constexpr (std::is_void_v<decltype(function(request))>) {
            function(request);
            return protocol::Pack(Nothing{});
        } else {
            return protocol::Pack(function(request));
        }
    };
}

void WorkerServer::AddRecordingHandlers() {
    On<Nothing>(Kind::kHello, [](const Nothing&) { return Number{protocol::kVersion}; });
    On<protocol::Probe>(Kind::kProbe, [this](const auto& probe) { return AskUniformity(m_casts, probe); });
    On<protocol::Settings>(Kind::kOpen, [this](const auto& settings) {
        m_devices.ClosePreview();  // a camera can be opened once only
        m_desk.Open(settings);
    });
    On<Nothing>(Kind::kClose, [this](const Nothing&) { m_desk.Close(); });
    On<protocol::PackageFiles>(Kind::kStart, [this](const auto& files) { return m_desk.Start(files); });
    On<Nothing>(Kind::kKeyFrame, [this](const Nothing&) { return Number{m_desk.KeyFrame()}; });
    On<Text>(Kind::kJournal, [this](const Text& text) { return Number{m_desk.Journal(text.value)}; });
    On<Nothing>(Kind::kState, [this](const Nothing&) { return m_desk.State(); });
    On<Nothing>(Kind::kStop, [this](const Nothing&) { m_desk.Stop(); });
}

void WorkerServer::AddDeviceHandlers() {
    On<Nothing>(Kind::kListSound, [](const Nothing&) { return AskSound(); });
    On<Nothing>(Kind::kListCameras, [](const Nothing&) { return AskCameras(); });
    On<protocol::Preview>(Kind::kPreview, [this](const auto& request) {
        return Number{static_cast<std::int32_t>(m_devices.OpenPreview(request))};
    });
    On<Nothing>(Kind::kEndPreview, [this](const Nothing&) { m_devices.ClosePreview(); });
    On<Text>(Kind::kVolume, [](const Text& source) { return ToWire(ReadVolume(source.value)); });
    On<protocol::SetVolume>(Kind::kSetVolume,
                            [](const auto& set) { return ToWire(ChangeVolume(set.source, set.percent)); });
    On<protocol::SetMute>(Kind::kSetMute, [](const auto& set) { ChangeMute(set.source, set.isMuted != 0); });
    On<protocol::TestRecord>(Kind::kTestRecord, [this](const auto& request) { m_devices.StartTestRecord(request); });
    On<Nothing>(Kind::kEndTestRecord, [this](const Nothing&) { m_devices.StopTestRecord(); });
    On<Nothing>(Kind::kTestRecordTime, [this](const Nothing&) { return Number{m_devices.TestRecordMs()}; });
    On<Text>(Kind::kTestPlay, [this](const Text& file) { m_devices.StartTestPlay(file.value); });
    On<Nothing>(Kind::kEndTestPlay, [this](const Nothing&) { m_devices.StopTestPlay(); });
    On<Nothing>(Kind::kTestPlayTime, [this](const Nothing&) { return Number{m_devices.TestPlayMs()}; });
}

void WorkerServer::AddPackageHandlers() {
    On<Text>(Kind::kLength, [](const Text& path) { return Number{LengthMs(path.value)}; });
    On<Text>(Kind::kFrameSize, [](const Text& path) { return AskSize(path.value); });
    On<Text>(Kind::kKeyFrames, [](const Text& path) { return protocol::NumberList{KeyFrames(path.value)}; });
    On<Text>(Kind::kEncrypted, [](const Text& path) { return Number{IsEncrypted(path.value) ? 1 : 0}; });
    On<Text>(Kind::kFormatVersion, [](const Text& path) { return Number{FormatVersion(path.value)}; });
    On<Text>(Kind::kEmptiness, [](const Text& path) { return Number{static_cast<int>(IsEmpty(path.value))}; });
    On<Text>(Kind::kVideoAttribute, [](const Text& path) { return Number{VideoAttribute(path.value)}; });
    On<Text>(Kind::kAudioBitrate, [](const Text& path) { return Number{AudioBitrate(path.value)}; });
    On<protocol::PackageFiles>(
        Kind::kExtract, [](const auto& files) { return Number{ExtractStored(files.package, ToStoredPaths(files))}; });
    On<protocol::PackageFiles>(Kind::kStore, [this](const auto& files) { return m_desk.Store(files); });
    On<Text>(Kind::kVerifyQuick, [](const Text& path) { return Number{static_cast<int>(QuickVerify(path.value))}; });
    On<protocol::TwoPaths>(Kind::kDrawFit, [](const auto& paths) { DrawFit(paths.target, paths.source); });
    On<Nothing>(Kind::kCancel, [this](const Nothing&) { m_verify.Cancel(); });
}

template <typename Request, typename Function>
void WorkerServer::StartLong(const Message& request, Function work) {
    m_verify.Start([this, request, work](const std::function<bool()>& isCancelled) {
        Message answer;
        try {
            const auto onPercent = [&, last = -1](int percent) mutable {
                if (percent == last) return;
                last = percent;
                m_channel.SendIfRoom(Channel::Make(Kind::kProgress, request.id, Number{percent}));
            };
            const auto words = protocol::Unpack<Request>(request.body);
            answer = Channel::Make(Kind::kDone, request.id, work(words, onPercent, isCancelled));
        } catch (...) {
            answer = Channel::Make(Kind::kFailed, request.id, CurrentFailure());
        }
        m_channel.Send(answer);
    });
}

void WorkerServer::Answer(const Message& request) {
    if (request.kind == Kind::kVerifyWhole)
        return StartLong<Text>(request, [](const Text& path, const Progress& progress, const Cancel& cancel) {
            return ToVerdict(WholeVerify(path.value, progress, cancel));
        });
    if (request.kind == Kind::kInspect) return StartLong<protocol::InspectRequest>(request, InspectPackage);
    if (request.kind == Kind::kCast)
        return StartLong<Nothing>(request, [this](const Nothing&, const Progress&, const Cancel& cancel) {
            m_casts.Open([&cancel] { return !cancel(); });
            return Nothing{};
        });
    Message answer{Kind::kDone, request.id, {}};
    try {
        const auto handler = m_handlers.find(request.kind);
        if (handler == m_handlers.end()) throw std::logic_error("The media worker does not know this request.");
        answer.body = handler->second(request.body);
    } catch (...) {
        answer = Channel::Make(Kind::kFailed, request.id, CurrentFailure());
    }
    m_channel.Send(answer);
}

bool WorkerServer::WaitForWork(int signalFd) {
    pollfd descriptors[] = {{m_channel.FileDescriptor(), POLLIN, 0}, {signalFd, POLLIN, 0}};
    const int timeoutMs =
        m_endNs == 0 ? -1 : static_cast<int>(std::max<std::int64_t>(0, (m_endNs - MonotonicNs()) / kNsPerMs));
    poll(descriptors, 2, timeoutMs);
    if (descriptors[1].revents) OnTerminate(signalFd);
    return descriptors[0].revents != 0;
}

void WorkerServer::OnTerminate(int signalFd) {
    signalfd_siginfo info;
    [[maybe_unused]] const auto taken = read(signalFd, &info, sizeof info);
    // Whoever asks twice means it.
    m_endNs = m_endNs ? MonotonicNs() : MonotonicNs() + kFarewellNs;
    m_desk.Abandon();
}

int WorkerServer::Run() {
    const int signalFd = BlockedSignals();
    while (m_endNs == 0 || MonotonicNs() < m_endNs) {
        if (!WaitForWork(signalFd)) continue;
        const auto request = m_channel.Receive();
        if (!request) break;
        Answer(*request);
    }
    m_desk.Abandon();
    m_verify.CancelAndWait();
    close(signalFd);
    return 0;
}

}  // namespace kestrum::media
