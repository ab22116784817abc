#include "media/package/Inspection.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "media/package/CueList.h"
#include "media/package/Recovery.h"

namespace kestrum::media {

namespace {

using namespace ebml;

/// Walks over the media, cluster by cluster, and notes what is not as it was written.
class MediaInspector {
  public:
    MediaInspector(IStorage& storage, const PackageMap& map, const MediaPreview& media, bool torn)
        : m_storage(storage), m_map(map), m_lengthMs(media.lengthMs), m_torn(torn) {
        for (const CueEntry& cue : media.cues) m_begins.emplace(cue.cluster, cue.ms);
    }

    std::vector<DamagedPiece> Run(const Progress& progress, const Cancel& cancel, bool& cancelled) {
        std::uint64_t position = m_map.mediaBegin;
        while (position < m_map.fileSize) {
            cancelled = cancel && cancel();
            if (cancelled) break;
            position = Step(position);
            if (progress) progress(static_cast<int>(position * 100 / m_map.fileSize));
        }
        EndPiece(m_lengthMs);
        return std::move(m_pieces);
    }

  private:
    /// Where to go on behind `position`.
    std::uint64_t Step(std::uint64_t position) {
        const auto element = ReadElement(m_storage, position, m_map.fileSize);
        const bool readable = element && !element->unknownSize && IsKnown(element->id);
        if (readable && element->id != kCluster) return element->End();
        if (readable && IsWhole(*element)) {
            const std::int64_t begin = BeginOf(*element);
            EndPiece(begin);
            m_reached = begin;
            return element->End();
        }
        const std::uint64_t next = NextCluster(position);
        // Behind its last whole cluster a torn package is what its recorder had not finished: no damage.
        if (!readable && m_torn && next == m_map.fileSize) return next;
        const std::uint64_t end = readable ? element->End() : next;
        AddDamage(readable ? BeginOf(*element) : m_reached, end - position);
        return end;
    }

    static bool IsKnown(std::uint32_t id) {
        constexpr std::array kIds{kCluster, kCues, kVoid, kAttachments, kChapters, kTags, kSeekHead, kInfo, kTracks};
        return std::find(kIds.begin(), kIds.end(), id) != kIds.end();
    }

    bool IsWhole(const Element& cluster) { return CheckCrc(m_storage, cluster) == CrcState::kRight; }

    /// The time at which a cluster begins: its key frame's, or the time that the cluster itself tells.
    std::int64_t BeginOf(const Element& cluster) {
        const auto known = m_begins.find(cluster.position);
        if (known != m_begins.end()) return known->second;
        std::int64_t ms = m_reached;
        ForEachChild(m_storage, cluster.data, cluster.End(), [&](const Element& child) {
            if (child.id == kTimestamp) ms = static_cast<std::int64_t>(ReadUnsigned(m_storage, child));
            return child.id != kTimestamp;
        });
        return std::clamp(ms, m_reached, std::max(m_reached, m_lengthMs));
    }

    /// The next place behind `position` that the list of key frames knows and where a cluster begins.
    std::uint64_t NextCluster(std::uint64_t position) {
        for (auto next = m_begins.upper_bound(position); next != m_begins.end(); ++next) {
            const auto element = ReadElement(m_storage, next->first, m_map.fileSize);
            if (element && element->id == kCluster) return next->first;
        }
        return m_map.cues && m_map.cues->position > position ? m_map.cues->position : m_map.fileSize;
    }

    /// Pieces that follow each other are one.
    void AddDamage(std::int64_t beginMs, std::uint64_t bytes) {
        if (!m_pieceOpen) m_pieces.push_back({DamageKind::kMedia, beginMs, beginMs, 0});
        m_pieceOpen = true;
        m_pieces.back().bytes += static_cast<std::int64_t>(bytes);
    }

    void EndPiece(std::int64_t endMs) {
        if (m_pieceOpen) m_pieces.back().endMs = std::max(m_pieces.back().beginMs, endMs);
        m_pieceOpen = false;
    }

    IStorage& m_storage;
    const PackageMap& m_map;
    const std::int64_t m_lengthMs;
    const bool m_torn;
    std::map<std::uint64_t, std::int64_t> m_begins;  ///< of the clusters that the list of key frames knows
    std::int64_t m_reached = 0;
    bool m_pieceOpen = false;
    std::vector<DamagedPiece> m_pieces;
};

FileKind KindOf(const Error& error) {
    switch (error.kind) {
        case ErrorKind::kMissing:
            return FileKind::kMissing;
        case ErrorKind::kNoPermission:
            return FileKind::kNoPermission;
        case ErrorKind::kNotAPackage:
            return FileKind::kNoFile;
        default:
            return FileKind::kUnreadable;
    }
}

bool IsFolder(const std::string& path) {
    try {
        FileStorage::Open(path + "/.", FileStorage::Access::kRead);
    } catch (const Error& error) {
        return error.kind == ErrorKind::kNotAPackage;
    }
    return false;
}

FileKind KindOfForeign(IStorage& storage) {
    if (storage.Size() == 0) return FileKind::kEmptyFile;
    const auto head = ReadElement(storage, 0, storage.Size());
    return head && head->id == kEbmlHead && !head->unknownSize ? FileKind::kForeignMatroska : FileKind::kForeign;
}

ChapterMark ReadAtom(IStorage& storage, const Element& atom) {
    constexpr std::uint64_t kNanosecondsPerMs = 1'000'000;
    constexpr std::size_t kLongestTitle = 1 << 16;
    ChapterMark mark;
    ForEachChild(storage, atom.data, atom.End(), [&](const Element& child) {
        if (child.id == kChapterTimeStart)
            mark.ms = static_cast<std::int64_t>(ReadUnsigned(storage, child) / kNanosecondsPerMs);
        if (child.id != kChapterDisplay) return true;
        ForEachChild(storage, child.data, child.End(), [&](const Element& part) {
            if (part.id == kChapString) mark.title = ReadText(storage, part, kLongestTitle);
            return true;
        });
        return true;
    });
    return mark;
}

void AddChapters(IStorage& storage, const Element& chapters, std::vector<ChapterMark>& marks) {
    ForEachChild(storage, chapters.data, chapters.End(), [&](const Element& edition) {
        if (edition.id != kEditionEntry) return true;
        ForEachChild(storage, edition.data, edition.End(), [&](const Element& atom) {
            if (atom.id == kChapterAtom) marks.push_back(ReadAtom(storage, atom));
            return true;
        });
        return true;
    });
}

/// The chapters that count: those of the set of files that counts.
std::vector<ChapterMark> ReadChapters(IStorage& storage, const PackageMap& map) {
    std::vector<ChapterMark> marks;
    const bool behindMedia = std::any_of(map.fileSets.begin(), map.fileSets.end(),
                                         [&](const Element& set) { return set.position >= map.mediaBegin; });
    if (behindMedia) {
        const auto chapters = ReadElement(storage, map.head.chapters, map.fileSize);
        if (chapters && chapters->id == kChapters && !chapters->unknownSize) AddChapters(storage, *chapters, marks);
        return marks;
    }
    ForEachChild(storage, SegmentDataPosition(), map.mediaBegin, [&](const Element& element) {
        if (element.id == kChapters) AddChapters(storage, element, marks);
        return true;
    });
    return marks;
}

/// What is wrong with the end of the file.
void InspectTail(const PackageMap& map, Inspection& found) {
    const bool namesList = map.head.cues != 0;
    if (!namesList) return;
    if (map.head.cues >= map.fileSize) {
        found.damages.push_back({DamageKind::kCutOff, found.lengthMs, std::max(found.lengthMs, found.headLengthMs), 0});
    } else if (!map.cueEntries) {
        found.damages.push_back({DamageKind::kKeyFrameList, 0, 0, 0});
    }
}

void InspectParts(FileStorage& storage, const PackageMap& map, Inspection& found) {
    if (!map.headReadable) {
        found.damages.push_back({DamageKind::kFront, 0, 0, 0});
        return;
    }
    const MediaPreview media = PreviewMedia(storage, map);
    found.lengthMs = media.lengthMs;
    found.headLengthMs = std::llround(map.head.durationMs.value_or(0));
    for (const CueEntry& cue : media.cues)
        if (cue.track == kVideoTrack && (found.keyFrames.empty() || cue.ms > found.keyFrames.back()))
            found.keyFrames.push_back(cue.ms);
    found.holdsMedia = map.HoldsMedia();
    found.hasProject = map.Find(kProjectFileName) != nullptr;
    found.entriesWait = map.Find(kJournalName) != nullptr;
    found.chapters = ReadChapters(storage, map);
    if (!FilesAreSound(storage, map)) found.damages.push_back({DamageKind::kStoredFiles, 0, 0, 0});
    InspectTail(map, found);
}

void InspectMedia(IStorage& storage, const PackageMap& map, Inspection& found, const Progress& progress,
                  const Cancel& cancel) {
    const MediaPreview media = PreviewMedia(storage, map);
    const bool torn = found.soundness == Soundness::kInterrupted;
    auto pieces = MediaInspector(storage, map, media, torn).Run(progress, cancel, found.cancelled);
    if (!pieces.empty() && !torn) found.soundness = Soundness::kDamaged;
    found.damages.insert(found.damages.end(), pieces.begin(), pieces.end());
}

void InspectFile(const std::string& path, Thoroughness thoroughness, const Progress& progress, const Cancel& cancel,
                 Inspection& found) {
    const auto storage = FileStorage::Open(path, FileStorage::Access::kRead);
    const PackageMap map = ReadMap(*storage);
    found.formatVersion = map.formatVersion;
    found.kind = map.IsOurs() ? FileKind::kPackage : KindOfForeign(*storage);
    found.soundness = QuickVerify(path);
    if (found.kind != FileKind::kPackage) return;
    InspectParts(*storage, map, found);
    const bool mediaCanBeRead = map.headReadable && found.soundness != Soundness::kRecording;
    if (thoroughness == Thoroughness::kEverything && mediaCanBeRead)
        InspectMedia(*storage, map, found, progress, cancel);
}

}  // namespace

Inspection Inspect(const std::string& path, Thoroughness thoroughness, const Progress& progress, const Cancel& cancel) {
    Inspection found;
    try {
        InspectFile(path, thoroughness, progress, cancel, found);
    } catch (const Error& error) {
        found.reason = error.what();
        // What could be read before counts; a file that cannot even be opened has none.
        if (found.kind == FileKind::kPackage)
            found.soundness = Soundness::kDamaged;
        else
            found.kind = IsFolder(path) ? FileKind::kFolder : KindOf(error);
    }
    return found;
}

}  // namespace kestrum::media
