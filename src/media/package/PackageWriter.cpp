#include "media/package/PackageWriter.h"

#include <algorithm>
#include <cmath>

#include "media/package/ClusterWriter.h"
#include "media/package/CueList.h"
#include "media/package/OpenPackage.h"
#include "media/package/Recovery.h"

namespace kestrum::media {

class PackageWriter::Impl {
  public:
    explicit Impl(OpenedPackage opened)
        : recovered(PrepareForWriting(opened)),
          storage(std::move(opened.storage)),
          map(std::move(opened.map)),
          startMs(std::llround(map.head.durationMs.value_or(0))),
          endMs(startMs),
          lastVideoMs(startMs - 1),
          lastAudioMs(startMs - 1),
          lastWebcamMs(startMs - 1),
          clusters(*storage, map.fileSize) {
        if (map.encrypted)
            throw Error(ErrorKind::kNotAPackage, "The package is encrypted. Decrypt it first (ksECT).", 0);
        if (!map.HoldsMedia()) return;
        if (map.cueEntries) oldCues = *map.cueEntries;
        tracks = map.tracks;
    }

    void RequireRecording() const {
        RequireOpen();
        if (!activeTracks) throw Error(ErrorKind::kBadCall, "The tracks are not set.", 0);
    }

    void RequireOpen() const {
        if (!storage) throw Error(ErrorKind::kBadCall, "The package is closed.", 0);
    }

    void StoreFiles(const StoredFiles& files) {
        clusters.Flush();
        ReplaceFiles(*storage, files, [this](std::uint64_t bytes) {
            const std::uint64_t position = clusters.AppendRoom(bytes);
            return TailRoom{position, clusters.End()};
        });
    }

    std::vector<CueEntry> AllCues() const {
        std::vector<CueEntry> cues = oldCues;
        cues.insert(cues.end(), clusters.Cues().begin(), clusters.Cues().end());
        return cues;
    }

    std::optional<RecoveryReport> recovered;
    std::unique_ptr<IStorage> storage;  ///< empty once closed
    PackageMap map;                     ///< as it was at the opening
    std::int64_t startMs;
    std::int64_t endMs;
    std::int64_t lastVideoMs;
    std::int64_t lastAudioMs;
    std::int64_t lastWebcamMs;
    ClusterWriter clusters;
    std::vector<CueEntry> oldCues;
    std::optional<TrackConfigs> tracks;        ///< of media that were there at the opening
    std::optional<TrackConfigs> activeTracks;  ///< of this recording
    bool anyPicture = false;
    bool anySample = false;
};

PackageWriter::PackageWriter(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {
    m_impl->activeTracks = m_impl->tracks;
}

PackageWriter::~PackageWriter() = default;

std::unique_ptr<PackageWriter> PackageWriter::Open(const std::string& path) {
    return std::unique_ptr<PackageWriter>(new PackageWriter(std::make_unique<Impl>(OpenOrCreate(path))));
}

std::unique_ptr<PackageWriter> PackageWriter::Open(std::unique_ptr<IStorage> storage) {
    PackageMap map = ReadMap(*storage);
    OpenedPackage opened{std::move(storage), std::move(map)};
    return std::unique_ptr<PackageWriter>(new PackageWriter(std::make_unique<Impl>(std::move(opened))));
}

const std::optional<RecoveryReport>& PackageWriter::Recovered() const {
    return m_impl->recovered;
}

std::int64_t PackageWriter::StartMs() const {
    return m_impl->startMs;
}

const std::optional<TrackConfigs>& PackageWriter::ExistingTracks() const {
    return m_impl->tracks;
}

void PackageWriter::SetTracks(const TrackConfigs& tracks) {
    m_impl->RequireOpen();
    if (m_impl->activeTracks) throw Error(ErrorKind::kBadCall, "The tracks of the package are set already.", 0);
    WriteTracks(*m_impl->storage, tracks);
    m_impl->activeTracks = tracks;
}

std::int64_t PackageWriter::WriteVideo(std::int64_t positionMs, bool key, std::span<const std::uint8_t> sample) {
    m_impl->RequireRecording();
    if (!m_impl->anyPicture && !key)
        throw Error(ErrorKind::kBadCall, "The first picture of a recording must be a key frame.", 0);
    const std::int64_t ms = std::max(positionMs, m_impl->lastVideoMs + 1);
    m_impl->clusters.Write(kVideoTrack, ms, key, sample);
    m_impl->anyPicture = m_impl->anySample = true;
    m_impl->lastVideoMs = ms;
    m_impl->endMs = std::max(m_impl->endMs, ms + 1);
    return ms;
}

std::int64_t PackageWriter::WriteAudio(std::int64_t positionMs, std::span<const std::uint8_t> sample) {
    m_impl->RequireRecording();
    if (!m_impl->activeTracks->audio) throw Error(ErrorKind::kBadCall, "The package has no audio track.", 0);
    const std::int64_t ms = std::max(positionMs, m_impl->lastAudioMs + 1);
    m_impl->clusters.Write(kAudioTrack, ms, true, sample);
    m_impl->anySample = true;
    m_impl->lastAudioMs = ms;
    m_impl->endMs = std::max(m_impl->endMs, ms + AudioFrameMs(m_impl->activeTracks->audio->sampleRate));
    return ms;
}

std::int64_t PackageWriter::WriteWebcam(std::int64_t positionMs, bool key, std::span<const std::uint8_t> sample) {
    m_impl->RequireRecording();
    if (!m_impl->activeTracks->webcam) throw Error(ErrorKind::kBadCall, "The package has no webcam track.", 0);
    const std::int64_t ms = std::max(positionMs, m_impl->lastWebcamMs + 1);
    m_impl->clusters.Write(kWebcamTrack, ms, key, sample);
    m_impl->anySample = true;
    m_impl->lastWebcamMs = ms;
    m_impl->endMs = std::max(m_impl->endMs, ms + 1);
    return ms;
}

void PackageWriter::Flush() {
    m_impl->RequireOpen();
    m_impl->clusters.Flush();
}

void PackageWriter::Sync() {
    Flush();
    m_impl->storage->Sync();
}

void PackageWriter::WriteJournal(std::string_view text) {
    StoreFiles({{kJournalName, Bytes(text.begin(), text.end())}});
}

void PackageWriter::StoreFiles(const StoredFiles& files) {
    m_impl->RequireOpen();
    m_impl->StoreFiles(files);
}

std::int64_t PackageWriter::LengthMs() const {
    return m_impl->endMs;
}

void PackageWriter::Close(std::int64_t endMs) {
    m_impl->RequireOpen();
    m_impl->clusters.CloseCluster();
    std::int64_t length = m_impl->startMs;
    if (m_impl->anySample) {
        length = std::max(endMs, m_impl->endMs);
        FinishMedia(*m_impl->storage, m_impl->clusters.End(), m_impl->AllCues(), length);
    }
    if (ReadMap(*m_impl->storage).Find(kJournalName) != nullptr) {
        RecoveryReport report;
        FinishIndex(*m_impl->storage, length, report);
    }
    m_impl->storage->Sync();
    m_impl->storage.reset();
}

}  // namespace kestrum::media
