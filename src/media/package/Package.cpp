#include "media/package/Package.h"

#include <cmath>

#include "media/package/CueList.h"
#include "media/package/OpenPackage.h"
#include "media/package/Recovery.h"

namespace kestrum::media {

namespace {

/// A package of ours, open for reading.
struct Opened {
    std::unique_ptr<FileStorage> storage;
    PackageMap map;
};

Opened OpenForReading(const std::string& path) {
    Opened opened;
    opened.storage = FileStorage::Open(path, FileStorage::Access::kRead);
    opened.map = ReadMap(*opened.storage);
    return opened;
}

Opened OpenOurs(const std::string& path) {
    Opened opened = OpenForReading(path);
    if (!opened.map.IsOurs()) throw Error(ErrorKind::kNotAPackage, "'" + path + "' is not a Kestrum package.", 0);
    if (!opened.map.headReadable) throw Error(ErrorKind::kDamaged, "The head of '" + path + "' is damaged.", 0);
    return opened;
}

std::optional<RecoveryReport> RecoverExisting(const std::string& path) {
    const OpenedPackage package = OpenExisting(path);
    return RecoverIfInterrupted(*package.storage, package.map);
}

std::vector<std::int64_t> KeyFramesOf(const std::vector<CueEntry>& cues) {
    std::vector<std::int64_t> positions;
    for (const CueEntry& cue : cues)
        if (cue.track == kVideoTrack && (positions.empty() || cue.ms > positions.back())) positions.push_back(cue.ms);
    return positions;
}

/// A living recorder may switch the files over between two reads; what was read then fails its check sum.
StoredFiles ReadFilesOf(const std::string& path, Opened& opened) {
    constexpr int kAttempts = 5;
    for (int attempt = 1;; ++attempt) {
        try {
            return PreviewFiles(*opened.storage, opened.map);
        } catch (const Error& error) {
            if (error.kind != ErrorKind::kDamaged || attempt == kAttempts) throw;
        }
        opened = OpenOurs(path);
    }
}

bool StartsWithCluster(IStorage& storage, const CueEntry& cue) {
    const auto element = ebml::ReadElement(storage, cue.cluster, storage.Size());
    return element && element->id == ebml::kCluster;
}

bool HeadAndTailAreSound(IStorage& storage, const PackageMap& map) {
    if (!FilesAreSound(storage, map)) return false;
    if (!map.cues) return true;
    const auto& cues = map.cueEntries;
    if (!cues || cues->empty() || !map.tracks || !map.head.durationMs) return false;
    return StartsWithCluster(storage, cues->front()) && StartsWithCluster(storage, cues->back());
}

Soundness QuickSoundness(FileStorage& storage, const PackageMap& map) {
    if (!map.IsOurs()) return Soundness::kForeign;
    if (!map.headReadable) return Soundness::kDamaged;
    if (storage.IsLockedByOther()) return Soundness::kRecording;
    if (map.IsInterrupted()) return Soundness::kInterrupted;
    return HeadAndTailAreSound(storage, map) ? Soundness::kSound : Soundness::kDamaged;
}

Soundness SoundnessOf(const Error& error) {
    if (error.kind == ErrorKind::kMissing) return Soundness::kMissing;
    return error.kind == ErrorKind::kNotAPackage ? Soundness::kForeign : Soundness::kDamaged;
}

/// Reads every cluster. False at the first one that is damaged.
bool ClustersAreSound(IStorage& storage, const PackageMap& map, const Progress& progress, const Cancel& cancel,
                      bool& cancelled) {
    std::uint64_t position = map.mediaBegin;
    while (position < map.fileSize) {
        if (cancel && cancel()) {
            cancelled = true;
            return true;
        }
        const auto element = ebml::ReadElement(storage, position, map.fileSize);
        if (!element || element->unknownSize) return false;
        const bool cluster = element->id == ebml::kCluster;
        if (cluster && ebml::CheckCrc(storage, *element) != ebml::CrcState::kRight) return false;
        position = element->End();
        if (progress) progress(static_cast<int>(position * 100 / map.fileSize));
    }
    return true;
}

}  // namespace

std::int64_t LengthMs(const std::string& path) {
    const Opened opened = OpenOurs(path);
    return PreviewMedia(*opened.storage, opened.map).lengthMs;
}

std::optional<FrameDimensions> FrameSize(const std::string& path) {
    const Opened opened = OpenOurs(path);
    if (!opened.map.tracks) return std::nullopt;
    return FrameDimensions{opened.map.tracks->video.width, opened.map.tracks->video.height};
}

std::vector<std::int64_t> KeyFrames(const std::string& path) {
    const Opened opened = OpenOurs(path);
    return KeyFramesOf(PreviewMedia(*opened.storage, opened.map).cues);
}

int FormatVersion(const std::string& path) {
    return OpenForReading(path).map.formatVersion;
}

bool IsEncrypted(const std::string& path) {
    return OpenForReading(path).map.encrypted;
}

Emptiness IsEmpty(const std::string& path) {
    try {
        const Opened opened = OpenForReading(path);
        const PackageMap& map = opened.map;
        const bool whole = map.IsOurs() && map.ownLayout && map.tailWhole && FilesAreSound(*opened.storage, map);
        const bool waiting = map.Find(kJournalName) != nullptr || opened.storage->IsLockedByOther();
        return whole && !waiting && !map.HoldsMedia() ? Emptiness::kEmpty : Emptiness::kHoldsMedia;
    } catch (const Error& error) {
        return error.kind == ErrorKind::kMissing ? Emptiness::kMissing : Emptiness::kHoldsMedia;
    }
}

int VideoAttribute(const std::string& path) {
    const Opened opened = OpenOurs(path);
    if (!opened.map.tracks || !opened.map.tracks->webcam) return 0;
    const int width = opened.map.tracks->webcam->width;
    return width >= 320 ? 4 : width >= 240 ? 2 : 1;
}

int AudioBitrate(const std::string& path) {
    const Opened opened = OpenOurs(path);
    if (!opened.map.tracks || !opened.map.tracks->audio) return 0;
    return (opened.map.tracks->audio->bitsPerSecond + 500) / 1000;
}

PackageDescription Describe(const std::string& path) {
    PackageDescription description;
    Opened opened = OpenForReading(path);
    description.soundness = QuickSoundness(*opened.storage, opened.map);
    description.formatVersion = opened.map.formatVersion;
    if (!opened.map.IsOurs() || !opened.map.headReadable) return description;
    const MediaPreview media = PreviewMedia(*opened.storage, opened.map);
    description.lengthMs = media.lengthMs;
    description.keyFrames = KeyFramesOf(media.cues);
    description.tracks = opened.map.tracks;
    description.stored = ReadFilesOf(path, opened);
    return description;
}

Soundness QuickVerify(const std::string& path) {
    try {
        const Opened opened = OpenForReading(path);
        return QuickSoundness(*opened.storage, opened.map);
    } catch (const Error& error) {
        return SoundnessOf(error);
    }
}

VerifyResult WholeVerify(const std::string& path, const Progress& progress, const Cancel& cancel) {
    VerifyResult result;
    result.soundness = QuickVerify(path);
    if (result.soundness == Soundness::kInterrupted) {
        try {
            result.recovered = RecoverExisting(path);
        } catch (const Error& error) {
            if (error.kind == ErrorKind::kLocked) {
                result.soundness = Soundness::kRecording;
                return result;
            }
            if (error.kind != ErrorKind::kDamaged) throw;
        }
        result.soundness = QuickVerify(path);
    }
    if (result.soundness != Soundness::kSound) return result;
    const Opened opened = OpenOurs(path);
    if (!ClustersAreSound(*opened.storage, opened.map, progress, cancel, result.cancelled))
        result.soundness = Soundness::kDamaged;
    return result;
}

std::optional<RecoveryReport> Recover(const std::string& path) {
    if (!OpenOurs(path).map.IsInterrupted()) return std::nullopt;
    return RecoverExisting(path);
}

StoredFiles ReadStored(const std::string& path) {
    Opened opened = OpenOurs(path);
    return ReadFilesOf(path, opened);
}

std::optional<RecoveryReport> WriteStored(const std::string& path, const StoredFiles& files) {
    OpenedPackage package = OpenOrCreate(path);
    StoredFiles present;
    if (package.map.Find(kJournalName) != nullptr) present = LoadAttachedFiles(*package.storage, package.map);
    const auto recovered = PrepareForWriting(package);
    const std::int64_t length = std::llround(package.map.head.durationMs.value_or(0));
    ReplaceFilesOfClosedPackage(*package.storage, package.map, MergePendingJournal(files, present, length));
    return recovered;
}

StoredFiles LoadFiles(const StoredPaths& paths) {
    StoredFiles files;
    const auto load = [&](const char* name, const std::string& path) {
        if (!path.empty()) files[name] = ReadWholeFile(path);
    };
    load(kProjectFileName, paths.projectFile);
    load(kCursorImageName, paths.cursorImage);
    load(kPhotoName, paths.photo);
    load(kIndexTextName, paths.indexText);
    return files;
}

bool ExtractStored(const std::string& path, const StoredPaths& targets) {
    const StoredFiles files = ReadStored(path);
    if (files.count(kProjectFileName) == 0) return false;
    const auto save = [&](const char* name, const std::string& target) {
        const auto file = files.find(name);
        if (!target.empty() && file != files.end()) WriteWholeFile(target, *file->second);
    };
    save(kProjectFileName, targets.projectFile);
    save(kCursorImageName, targets.cursorImage);
    save(kPhotoName, targets.photo);
    save(kIndexTextName, targets.indexText);
    return true;
}

int ProbePackage(std::span<const std::uint8_t> file) {
    try {
        MemoryStorage storage(file);
        const PackageMap map = ReadMap(storage);
        if (!map.IsOurs() || !map.headReadable) return -1;
        const MediaPreview media = PreviewMedia(storage, map);
        HeadAndTailAreSound(storage, map);
        PreviewFiles(storage, map);
        return static_cast<int>(KeyFramesOf(media.cues).size());
    } catch (const Error&) {
        return -1;
    }
}

}  // namespace kestrum::media
