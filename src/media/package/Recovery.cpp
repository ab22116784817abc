#include "media/package/Recovery.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>

#include "media/package/ClusterFormat.h"
#include "media/package/CueList.h"
#include "media/package/Error.h"
#include "media/package/Journal.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {

namespace {

using namespace ebml;

/// Keeps the journal of a project file that cannot be read: whoever repairs that one will want it.
constexpr const char* kUnmergedJournalName = "journal.unmerged.txt";

std::int64_t StoredLength(const PackageMap& map) {
    return std::llround(map.head.durationMs.value_or(0));
}

std::int64_t AudioFrameMsOf(const PackageMap& map) {
    return AudioFrameMs(map.tracks && map.tracks->audio ? map.tracks->audio->sampleRate : 0);
}

/// Where the head's list of key frames ends is where the media that it does not know begin.
struct KnownMedia {
    std::vector<CueEntry> cues;
    std::uint64_t unknownBegin = 0;
    std::int64_t lengthMs = 0;
};

KnownMedia KnownMediaOf(const PackageMap& map) {
    if (!map.cueEntries) return {{}, map.mediaBegin, 0};
    return {*map.cueEntries, map.cues->End(), StoredLength(map)};
}

std::string AsText(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// What becomes of project file and journal; nullopt if the project file cannot be read.
std::optional<MergedProject> Merge(const Bytes& projectFile, const StoredFiles& files, std::int64_t lengthMs) {
    const auto journal = files.find(kJournalName);
    const auto entries = journal == files.end() ? std::vector<JournalEntry>() : ParseJournal(AsText(*journal->second));
    // An empty journal says nothing; it must not empty the index.
    if (entries.empty()) return SetDuration(projectFile, lengthMs);
    return ReplaceIndex(projectFile, entries, lengthMs);
}

/// Closes a cluster that the recorder left open: size and check sum.
void SealCluster(IStorage& storage, const OpenCluster& cluster) {
    const std::uint64_t checkedAt = cluster.position + kClusterCheckedAt;
    if (cluster.end <= checkedAt) return;
    const auto content = ReadExactly(storage, checkedAt, cluster.end - checkedAt);
    if (!content) return;
    const auto checksum = static_cast<std::uint32_t>(crc32_z(crc32(0, nullptr, 0), content->data(), content->size()));
    const std::uint64_t dataSize = cluster.end - cluster.position - kClusterDataAt;
    storage.WriteAt(cluster.position + kClusterSealAt, ClusterSeal(dataSize, checksum));
}

void Hide(IStorage& storage, const Element& element) {
    storage.WriteAt(element.position, LongVoidHeader(element.End() - element.position));
}

void HideGap(IStorage& storage, const MediaScan::Gap& gap) {
    storage.WriteAt(gap.begin, LongVoidHeader(gap.end - gap.begin));
}

void NameNoMedia(IStorage& storage, Head head) {
    head.cues = 0;
    head.durationMs.reset();
    storage.WriteAt(0, BuildHead(head));
    storage.Sync();
}

/// The whole media behind `begin`. Files that count and lie behind an unreadable piece must not be cut off with it.
MediaScan ScanForRecovery(IStorage& storage, const PackageMap& map, std::uint64_t begin) {
    MediaScan scan = ScanMedia(storage, begin, AudioFrameMsOf(map), Damage::kSkip);
    if (scan.goodEnd >= map.referencedEnd || map.head.attachments < scan.goodEnd + kLongVoidHeaderSize) return scan;
    MediaScan rest = ScanMedia(storage, map.head.attachments, AudioFrameMsOf(map), Damage::kSkip);
    scan.gaps.push_back({scan.goodEnd, map.head.attachments});
    scan.gaps.insert(scan.gaps.end(), rest.gaps.begin(), rest.gaps.end());
    scan.cues.insert(scan.cues.end(), rest.cues.begin(), rest.cues.end());
    scan.openClusters.insert(scan.openClusters.end(), rest.openClusters.begin(), rest.openClusters.end());
    scan.leftovers.insert(scan.leftovers.end(), rest.leftovers.begin(), rest.leftovers.end());
    scan.endMs = std::max(scan.endMs, rest.endMs);
    scan.goodEnd = rest.goodEnd;
    return scan;
}

/// Repairs the media; returns their length.
std::int64_t RecoverMedia(IStorage& storage, const PackageMap& map, RecoveryReport& report) {
    KnownMedia known = KnownMediaOf(map);
    const MediaScan scan = ScanForRecovery(storage, map, known.unknownBegin);
    report.mediaChanged = known.cues.empty() || scan.anyCluster;
    known.cues.insert(known.cues.end(), scan.cues.begin(), scan.cues.end());
    report.bytesCut = static_cast<std::int64_t>(map.fileSize - scan.goodEnd);
    for (const MediaScan::Gap& gap : scan.gaps) report.bytesCut += static_cast<std::int64_t>(gap.end - gap.begin);

    if (scan.goodEnd < map.fileSize) storage.Truncate(scan.goodEnd);
    for (const MediaScan::Gap& gap : scan.gaps) HideGap(storage, gap);
    if (!report.mediaChanged) return known.lengthMs;
    for (const OpenCluster& cluster : scan.openClusters) SealCluster(storage, cluster);
    const std::int64_t length = std::max(known.lengthMs, scan.endMs);
    if (known.cues.empty()) {
        NameNoMedia(storage, map.head);
        return 0;
    }
    FinishMedia(storage, scan.goodEnd, known.cues, length);
    for (const Element& leftover : scan.leftovers)
        if (!map.cues || leftover.position != map.cues->position) Hide(storage, leftover);
    return length;
}

}  // namespace

void FinishMedia(IStorage& storage, std::uint64_t position, const std::vector<CueEntry>& cues, std::int64_t lengthMs) {
    const PackageMap map = ReadMap(storage);
    Bytes list;
    const std::uint64_t padding = PaddingBefore(position);
    if (padding != 0) AppendVoid(list, padding);
    const Bytes element = BuildCues(cues);
    list.insert(list.end(), element.begin(), element.end());
    storage.WriteAt(position, list);
    storage.Sync();

    Head head = map.head;
    head.cues = position + padding;
    head.durationMs = static_cast<double>(lengthMs);
    storage.WriteAt(0, BuildHead(head));
    storage.Sync();
    if (map.cues && map.cues->position != head.cues) Hide(storage, *map.cues);
}

void FinishIndex(IStorage& storage, std::int64_t lengthMs, RecoveryReport& report) {
    const PackageMap map = ReadMap(storage);
    report.lengthMs = lengthMs;
    const bool hasJournal = map.Find(kJournalName) != nullptr;
    const AttachedFile* project = map.Find(kProjectFileName);
    report.indexPending = hasJournal && project == nullptr;
    if (project == nullptr || (!hasJournal && !report.mediaChanged)) return;
    const StoredFiles files = LoadAttachedFiles(storage, map);
    StoredFiles changes;
    if (const auto merged = Merge(*files.at(kProjectFileName), files, lengthMs)) {
        changes[kProjectFileName] = merged->projectFile;
        report.entries = merged->entries;
        report.entriesWithoutMedia = merged->entriesWithoutMedia;
    } else if (hasJournal) {
        changes[kUnmergedJournalName] = files.at(kJournalName);
        report.indexPending = true;
    }
    if (hasJournal) changes[kJournalName] = std::nullopt;
    if (!changes.empty()) ReplaceFilesOfClosedPackage(storage, changes);
}

std::optional<RecoveryReport> RecoverIfInterrupted(IStorage& storage) {
    return RecoverIfInterrupted(storage, ReadMap(storage));
}

std::optional<RecoveryReport> RecoverIfInterrupted(IStorage& storage, const PackageMap& map) {
    if (!map.headReadable || !map.ownLayout)
        throw Error(ErrorKind::kDamaged, "The head of the package is damaged; it cannot be recovered.", 0);
    if (!map.IsInterrupted()) return std::nullopt;
    RecoveryReport report;
    const std::int64_t length = map.tailWhole ? StoredLength(map) : RecoverMedia(storage, map, report);
    FinishIndex(storage, length, report);
    // Cutting off what a change of the files left behind brings nothing back that anybody missed.
    const bool nothingRecovered = !report.mediaChanged && map.Find(kJournalName) == nullptr;
    if (nothingRecovered) return std::nullopt;
    return report;
}

MediaPreview PreviewMedia(IStorage& storage, const PackageMap& map) {
    KnownMedia known = KnownMediaOf(map);
    MediaPreview preview{known.lengthMs, std::move(known.cues), false};
    if (map.tailWhole) return preview;
    const MediaScan scan = ScanMedia(storage, known.unknownBegin, AudioFrameMsOf(map), Damage::kStop);
    preview.changed = preview.cues.empty() || scan.anyCluster;
    preview.lengthMs = std::max(preview.lengthMs, scan.endMs);
    preview.cues.insert(preview.cues.end(), scan.cues.begin(), scan.cues.end());
    return preview;
}

StoredFiles PreviewFiles(IStorage& storage, const PackageMap& map) {
    StoredFiles files = LoadAttachedFiles(storage, map);
    const MediaPreview media = PreviewMedia(storage, map);
    const auto project = files.find(kProjectFileName);
    if (project != files.end() && (media.changed || files.count(kJournalName) != 0))
        if (const auto merged = Merge(*project->second, files, media.lengthMs)) project->second = merged->projectFile;
    files.erase(kJournalName);
    return files;
}

StoredFiles MergePendingJournal(const StoredFiles& changes, const StoredFiles& present, std::int64_t lengthMs) {
    const auto journal = present.find(kJournalName);
    const auto project = changes.find(kProjectFileName);
    if (journal == present.end() || project == changes.end() || !project->second) return changes;
    StoredFiles merged = changes;
    merged[kJournalName] = std::nullopt;
    if (const auto added = AddToIndex(*project->second, ParseJournal(AsText(*journal->second)), lengthMs)) {
        merged[kProjectFileName] = added->projectFile;
    } else {
        merged[kUnmergedJournalName] = journal->second;
    }
    return merged;
}

}  // namespace kestrum::media
