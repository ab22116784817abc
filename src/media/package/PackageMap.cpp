#include "media/package/PackageMap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "media/package/CueList.h"
#include "media/package/Error.h"
#include "media/package/TrackReader.h"

namespace kestrum::media {

namespace {

using namespace ebml;

constexpr std::size_t kLongestName = 4096;
constexpr std::size_t kLargestStoredFile = 256 << 20;

/// Major times 256 plus minor from "Kestrum package 8.0", 0 for any other text.
int FormatVersionOf(const std::string& writingApp) {
    constexpr std::string_view kPrefix = "Kestrum package ";
    if (writingApp.compare(0, kPrefix.size(), kPrefix) != 0) return 0;
    char* end = nullptr;
    const long major = std::strtol(writingApp.c_str() + kPrefix.size(), &end, 10);
    if (*end != '.' || major < 1 || major > 127) return 0;
    const long minor = std::strtol(end + 1, &end, 10);
    if (*end != '\0' || minor < 0 || minor > 255) return 0;
    return static_cast<int>(major * 256 + minor);
}

void ReadInfo(IStorage& storage, const Element& info, PackageMap& map) {
    ForEachChild(storage, info.data, info.End(), [&](const Element& child) {
        if (child.id == kWritingApp) map.formatVersion = FormatVersionOf(ReadText(storage, child, 64));
        if (child.id == kSegmentUuid) map.head.segmentUuid = ReadBinary(storage, child, 16);
        if (child.id == kDateUtc) map.head.dateUtc = static_cast<std::int64_t>(ReadUnsigned(storage, child));
        if (child.id == kDuration) map.head.durationMs = ReadFloat(storage, child);
        return true;
    });
    map.head.formatVersion = map.formatVersion;
    // A duration that is no sensible number of milliseconds counts as none.
    if (map.head.durationMs && !(*map.head.durationMs >= 0 && *map.head.durationMs <= 0x7FFFFFFF))
        map.head.durationMs.reset();
}

void ReadSeek(IStorage& storage, const Element& seek, std::uint64_t segmentData, Head& head) {
    std::uint64_t id = 0;
    std::uint64_t position = 0;
    ForEachChild(storage, seek.data, seek.End(), [&](const Element& child) {
        if (child.id == kSeekId) id = ReadUnsigned(storage, child);
        if (child.id == kSeekPosition) position = segmentData + ReadUnsigned(storage, child);
        return true;
    });
    if (id == kTracks) head.tracks = position;
    if (id == kCues) head.cues = position;
    if (id == kAttachments) head.attachments = position;
    if (id == kChapters) head.chapters = position;
}

void ReadSeekHead(IStorage& storage, const Element& seekHead, std::uint64_t segmentData, Head& head) {
    ForEachChild(storage, seekHead.data, seekHead.End(), [&](const Element& child) {
        if (child.id == kSeek) ReadSeek(storage, child, segmentData, head);
        return true;
    });
}

void ReadFileSet(IStorage& storage, const Element& attachments, PackageMap& map) {
    map.fileSets.push_back(attachments);
    ForEachChild(storage, attachments.data, attachments.End(), [&](const Element& child) {
        if (child.id != kAttachedFile) return true;
        AttachedFile file;
        file.element = child;
        ForEachChild(storage, child.data, child.End(), [&](const Element& part) {
            if (part.id == kFileName) file.name = ReadText(storage, part, kLongestName);
            if (part.id == kFileData) file.data = part;
            return true;
        });
        map.files.push_back(file);
        return true;
    });
}

/// Position of the segment's first child, 0 if this is no Matroska file.
std::uint64_t FindSegment(IStorage& storage, std::uint64_t fileSize) {
    const auto head = ReadElement(storage, 0, fileSize);
    if (!head || head->id != kEbmlHead || head->unknownSize) return 0;
    bool matroska = false;
    ForEachChild(storage, head->data, head->End(), [&](const Element& child) {
        if (child.id == kDocType) matroska = ReadText(storage, child, 16) == "matroska";
        return true;
    });
    if (!matroska) return 0;
    // The size of a segment may lie beyond the end of a torn file: only its header matters.
    const auto segment = ReadElement(storage, head->End(), ~std::uint64_t{0});
    return segment && segment->id == kSegment ? segment->data : 0;
}

/// Reads the elements in front of the media.
void ReadFront(IStorage& storage, std::uint64_t segmentData, PackageMap& map) {
    std::uint64_t position = segmentData;
    int fixedPlaces = 0;
    while (position < map.fileSize) {
        if (position == kTracksAt || position == kRegionAt) ++fixedPlaces;
        if (position == kMediaAt && fixedPlaces == 2) break;
        const auto element = ReadElement(storage, position, map.fileSize);
        if (!element) return;
        if (element->id == kCluster || element->id == kCues) break;
        if (element->unknownSize) return;
        if (element->id == kSeekHead) ReadSeekHead(storage, *element, segmentData, map.head);
        if (element->id == kInfo) ReadInfo(storage, *element, map);
        if (element->id == kTracks) ReadTracks(storage, *element, map);
        if (element->id == kTags) ReadTags(storage, *element, map);
        if (element->id == kAttachments) ReadFileSet(storage, *element, map);
        position = element->End();
    }
    map.headReadable = true;
    map.mediaBegin = position;
    map.ownLayout = position == kMediaAt && fixedPlaces == 2;
}

/// A set behind the media counts unless the front holds more than the journal: the front is switched over last.
void ReadFilesBehindMedia(IStorage& storage, PackageMap& map) {
    const bool frontHasFiles = std::any_of(map.files.begin(), map.files.end(),
                                           [](const AttachedFile& file) { return file.name != kJournalName; });
    if (frontHasFiles || map.head.attachments < map.mediaBegin) return;
    const auto set = ReadElement(storage, map.head.attachments, map.fileSize);
    if (!set || set->id != kAttachments || set->unknownSize) return;
    ReadFileSet(storage, *set, map);
    map.referencedEnd = std::max(map.referencedEnd, set->End());
    const auto chapters = ReadElement(storage, map.head.chapters, map.fileSize);
    if (chapters && chapters->id == kChapters && !chapters->unknownSize)
        map.referencedEnd = std::max(map.referencedEnd, chapters->End());
}

/// Whether whole elements without media fill the file from `position` to its end.
bool OnlyLeftovers(IStorage& storage, std::uint64_t position, std::uint64_t fileSize) {
    while (position < fileSize) {
        const auto element = ReadElement(storage, position, fileSize);
        if (!element || element->unknownSize || element->id == kCluster || element->id == kCues) return false;
        const bool known = element->id == kVoid || element->id == kAttachments || element->id == kChapters ||
                           element->id == kTags || element->id == kSeekHead || element->id == kInfo ||
                           element->id == kTracks;
        if (!known) return false;
        position = element->End();
    }
    return position == fileSize;
}

void ReadTail(IStorage& storage, PackageMap& map) {
    map.referencedEnd = map.mediaBegin;
    std::uint64_t tail = map.mediaBegin;
    if (map.head.cues >= map.mediaBegin && map.head.cues != 0) {
        const auto cues = ReadElement(storage, map.head.cues, map.fileSize);
        if (!cues || cues->id != kCues || cues->unknownSize) return;
        map.cues = cues;
        tail = cues->End();
        map.referencedEnd = tail;
        // A list that cannot be read says nothing that the media would not say again: a recovery writes it anew.
        map.cueEntries = ReadCues(storage, *cues);
        if (!map.cueEntries) return;
    }
    map.tailWhole = OnlyLeftovers(storage, tail, map.fileSize);
}

}  // namespace

const AttachedFile* PackageMap::Find(const std::string& name) const {
    const auto found =
        std::find_if(files.begin(), files.end(), [&](const AttachedFile& file) { return file.name == name; });
    return found == files.end() ? nullptr : &*found;
}

bool PackageMap::IsInterrupted() const {
    if (!tailWhole) return true;
    // A journal without a project file waits for one: nothing is left to be done to the media.
    return Find(kJournalName) != nullptr && Find(kProjectFileName) != nullptr;
}

PackageMap ReadMap(IStorage& storage) {
    PackageMap map;
    map.fileSize = storage.Size();
    const std::uint64_t segmentData = FindSegment(storage, map.fileSize);
    if (segmentData == 0) return map;
    ReadFront(storage, segmentData, map);
    if (!map.headReadable) return map;
    ReadTail(storage, map);
    ReadFilesBehindMedia(storage, map);
    if (map.ownLayout) map.ownLayout = ReadExactly(storage, 0, kTracksAt) == BuildHead(map.head);
    return map;
}

bool FilesAreSound(IStorage& storage, const PackageMap& map) {
    return std::all_of(map.fileSets.begin(), map.fileSets.end(), [&](const Element& set) {
        // Other programs need not write one.
        const CrcState state = CheckCrc(storage, set);
        return state == CrcState::kRight || (state == CrcState::kAbsent && !map.ownLayout);
    });
}

Bytes ReadAttachedFile(IStorage& storage, const AttachedFile& file) {
    if (file.data.size > kLargestStoredFile)
        throw Error(ErrorKind::kDamaged, "The stored file '" + file.name + "' is too large to be one.", 0);
    auto bytes = ReadExactly(storage, file.data.data, file.data.size);
    if (!bytes) throw Error(ErrorKind::kDamaged, "The stored file '" + file.name + "' cannot be read.", 0);
    return *std::move(bytes);
}

}  // namespace kestrum::media
