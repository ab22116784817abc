#include "media/capture/Recorder.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "media/capture/CameraTrack.h"
#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/PackageFeeder.h"
#include "media/capture/PictureLoop.h"
#include "media/capture/PictureSource.h"
#include "media/capture/PositionClock.h"
#include "media/capture/SoundInput.h"
#include "media/capture/SoundLoop.h"
#include "media/capture/VideoEncoder.h"
#include "media/package/Package.h"
#include "media/package/PackageWriter.h"

namespace kestrum::media {
namespace {

constexpr int kSampleRate = 48000;
constexpr int kMostFramesPerSecond = 60;

AudioLayout LayoutFor(const RecorderSettings& settings, const std::optional<TrackConfigs>& existing) {
    AudioLayout layout{kSampleRate, settings.stereo ? 2 : 1, settings.audioKbps * 1000};
    if (!existing || !existing->audio) return layout;
    layout.rate = existing->audio->sampleRate;
    layout.channels = existing->audio->channels;
    if (existing->audio->bitsPerSecond > 0) layout.bitsPerSecond = existing->audio->bitsPerSecond;
    return layout;
}

/// Object type, rate and channels; what follows only repeats them.
bool SameSound(const Bytes& a, const Bytes& b) {
    return a.size() >= 2 && b.size() >= 2 && std::equal(a.begin(), a.begin() + 2, b.begin());
}

CaptureError CannotAppend(const std::string& why) {
    return {CaptureErrorKind::kCannotAppend, "The recording cannot be added to this package: " + why};
}

}  // namespace

class Recorder::Impl {
  public:
    Impl(RecorderSettings settings, LevelSink onLevel)
        : m_settings(std::move(settings)), m_onLevel(std::move(onLevel)) {
        m_settings.framesPerSecond = std::clamp(m_settings.framesPerSecond, 1, kMostFramesPerSecond);
    }
    ~Impl() { StopLoops(MonotonicNs()); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void OpenSound(const AudioLayout& layout) {
        if (m_settings.soundSources.empty()) return;
        const bool fits = m_input && m_layout.rate == layout.rate && m_layout.channels == layout.channels;
        m_layout = layout;
        if (fits) return;
        m_input.reset();
        auto input = std::make_unique<SoundInput>(m_settings.soundSources, layout);
        input->Open();
        input->Settle();
        input->OnChange([this](const std::string& source, bool isBack) {
            if (onDeviceChange) onDeviceChange({source, false, isBack});
        });
        m_input = std::move(input);
    }

    void OpenDevicesAhead() {
        OpenSound(LayoutFor(m_settings, std::nullopt));
        OpenCamera();
    }

    void Start(const std::string& package, const StoredPaths& files) {
        // Everything that can refuse comes before the package is touched, but for what the package itself decides.
        const StoredFiles stored = LoadFiles(files);
        { const Screen check(m_settings.display, m_settings.area, m_settings.cast); }
        if (!m_input && !m_camera) OpenDevicesAhead();

        auto writer = PackageWriter::Open(package);
        recovered = writer->Recovered();
        const auto existing = writer->ExistingTracks();
        RequireFit(existing);
        OpenSound(LayoutFor(m_settings, existing));
        FitCamera(existing);
        MakeEncoders(existing);
        if (!existing) writer->SetTracks(Tracks());
        if (!stored.empty()) writer->StoreFiles(stored);
        Begin(std::move(writer), package);
    }

    std::int64_t AddKeyFrame() {
        if (!m_pictures || m_pictures->State() != EncoderState::kRunning) return -1;
        const std::int64_t position = m_clock->PromiseKey(MonotonicNs());
        m_pictures->Wake();
        return position;
    }

    bool WriteJournal(const std::string& text) { return m_feeder && m_feeder->PushJournal(text, m_clock->Last()); }

    void StoreFiles(const StoredFiles& files) { m_feeder->StoreFiles(files); }

    EncoderState State() const {
        if (!m_feeder) return EncoderState::kIdle;
        const EncoderState file = m_feeder->State();
        return file != EncoderState::kRunning ? file : m_pictures->State();
    }

    RecorderStatistics Statistics() const {
        RecorderStatistics statistics;
        if (!m_feeder) return statistics;
        const PictureCounts counts = m_pictures->Counts();
        statistics.pictures = counts.pictures;
        statistics.changedPictures = counts.changed;
        statistics.keyFrames = counts.keyFrames;
        statistics.videoBytes = counts.bytes;
        statistics.writtenMs = m_feeder->WrittenMs();
        if (m_sound) statistics.audioBytes = m_sound->Bytes();
        if (m_sound) statistics.soundComplete = m_sound->IsComplete();
        return statistics;
    }

    void Stop() {
        if (!m_feeder) return;
        const std::int64_t end = MonotonicNs();
        StopLoops(end);
        m_feeder->Finish(m_clock->PositionAt(end));
    }

    std::optional<RecoveryReport> recovered;

    DeviceChangeSink onDeviceChange;

  private:
    void TellCamera(bool isBack) {
        if (onDeviceChange) onDeviceChange({m_settings.camera.id, true, isBack});
    }

    void OpenCamera() {
        if (m_settings.camera.id.empty()) return;
        try {
            m_camera.reset();
            m_camera = std::make_unique<CameraTrack>(m_settings.camera, [this](bool isBack) { TellCamera(isBack); });
        } catch (const CaptureError&) {
            TellCamera(false);
        }
    }

    /// The tracks of a package are those of its first recording, and so is the size of its camera's pictures.
    void FitCamera(const std::optional<TrackConfigs>& existing) {
        if (!m_camera || !existing) return;
        if (!existing->webcam) {
            m_camera.reset();
            return TellCamera(false);
        }
        CameraSettings& camera = m_settings.camera;
        const bool fits = camera.width == existing->webcam->width && camera.height == existing->webcam->height;
        camera.width = existing->webcam->width;
        camera.height = existing->webcam->height;
        if (!fits) OpenCamera();
        if (m_camera) m_camera->FitTo(existing->webcam->avcC);
    }

    void RequireFit(const std::optional<TrackConfigs>& existing) const {
        if (!existing) return;
        if (existing->video.width % 2 || existing->video.height % 2)
            throw CannotAppend("its pictures have an odd size.");
        if (!existing->audio && !m_settings.soundSources.empty()) throw CannotAppend("it has no sound track.");
    }

    void MakeEncoders(const std::optional<TrackConfigs>& existing) {
        const int width = existing ? existing->video.width : m_settings.area.width;
        const int height = existing ? existing->video.height : m_settings.area.height;
        m_source = std::make_unique<PictureSource>(m_settings.display, m_settings.area, m_settings.cast, width, height);
        VideoEncoderSettings video{width, height, m_settings.framesPerSecond, false};
        m_encoder = std::make_unique<VideoEncoder>(video);
        if (existing && existing->video.avcC != m_encoder->AvcC()) {
            video.headersInKeyFrames = true;
            m_encoder = std::make_unique<VideoEncoder>(video);
        }
        if (!m_input) return;
        m_sound = std::make_unique<SoundLoop>(*m_input, m_layout, m_onLevel);
        if (existing && !SameSound(existing->audio->audioSpecificConfig, m_sound->AudioSpecificConfig())) {
            throw CannotAppend("its sound is of another kind.");
        }
    }

    TrackConfigs Tracks() const {
        TrackConfigs tracks;
        tracks.video = {m_settings.area.width, m_settings.area.height, m_encoder->AvcC()};
        if (m_sound) {
            tracks.audio = AudioTrackConfig{m_layout.rate, m_layout.channels, m_layout.bitsPerSecond,
                                            m_sound->AudioSpecificConfig()};
        }
        if (m_camera) tracks.webcam = m_camera->Config();
        return tracks;
    }

    void Begin(std::unique_ptr<PackageWriter> writer, const std::string& package) {
        const std::int64_t startMs = writer->StartMs();
        m_feeder = std::make_unique<PackageFeeder>(std::move(writer), package, RoomLimits{});
        const std::int64_t startNs = MonotonicNs();
        m_source->Refresh(true);
        m_clock = std::make_unique<PositionClock>(startMs, startNs);
        m_pictures =
            std::make_unique<PictureLoop>(*m_source, *m_encoder, *m_clock, *m_feeder, m_settings.framesPerSecond);
        if (m_sound) m_sound->Start(*m_feeder, startMs, startNs);
        if (m_camera) m_camera->Start(*m_feeder, *m_clock);
        m_pictures->Start(startMs);
    }

    void StopLoops(std::int64_t endNs) {
        if (m_camera) m_camera->Stop();
        if (m_pictures) m_pictures->Stop();
        if (m_sound) m_sound->Stop(endNs);
    }

    RecorderSettings m_settings;
    const LevelSink m_onLevel;
    AudioLayout m_layout;
    std::unique_ptr<SoundInput> m_input;
    std::unique_ptr<PictureSource> m_source;
    std::unique_ptr<VideoEncoder> m_encoder;
    std::unique_ptr<PositionClock> m_clock;
    std::unique_ptr<PackageFeeder> m_feeder;
    std::unique_ptr<SoundLoop> m_sound;
    std::unique_ptr<PictureLoop> m_pictures;
    std::unique_ptr<CameraTrack> m_camera;
};

Recorder::Recorder(RecorderSettings settings, LevelSink onLevel)
    : m_impl(std::make_unique<Impl>(std::move(settings), std::move(onLevel))) {}
Recorder::~Recorder() = default;
void Recorder::OpenDevices() {
    m_impl->OpenDevicesAhead();
}
void Recorder::OnDeviceChange(DeviceChangeSink onChange) {
    m_impl->onDeviceChange = std::move(onChange);
}
void Recorder::Start(const std::string& package, const StoredPaths& files) {
    m_impl->Start(package, files);
}
std::int64_t Recorder::AddKeyFrame() {
    return m_impl->AddKeyFrame();
}
bool Recorder::WriteJournal(const std::string& text) {
    return m_impl->WriteJournal(text);
}
void Recorder::StoreFiles(const StoredFiles& files) {
    m_impl->StoreFiles(files);
}
EncoderState Recorder::State() const {
    return m_impl->State();
}
RecorderStatistics Recorder::Statistics() const {
    return m_impl->Statistics();
}
const std::optional<RecoveryReport>& Recorder::Recovered() const {
    return m_impl->recovered;
}
void Recorder::Stop() {
    m_impl->Stop();
}

}  // namespace kestrum::media
