#include "media/package/FileSet.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "media/package/Error.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {

namespace {

using namespace ebml;

/// A file as it lies in the package: the whole AttachedFile element, so that nothing of an unknown one is lost.
struct RawFile {
    std::string name;
    Bytes element;
};

std::string_view MediaTypeOf(std::string_view name) {
    if (name == kProjectFileName) return "application/xml";
    if (name == kIndexTextName || name == kJournalName) return "text/plain";
    // The photo may have any format in spite of its name, and players take an image type for one more video track.
    return "application/octet-stream";
}

/// Stable over replacements: FNV-1a of the name. Zero is not allowed.
std::uint64_t FileUidOf(std::string_view name) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash | 1;
}

RawFile MakeRawFile(const std::string& name, const Bytes& content) {
    Bytes children;
    AppendText(children, kFileName, name);
    AppendText(children, kFileMediaType, MediaTypeOf(name));
    AppendUnsigned(children, kFileUid, FileUidOf(name));
    AppendBinary(children, kFileData, content);
    RawFile file{name, {}};
    AppendBinary(file.element, kAttachedFile, children);
    return file;
}

Bytes BuildAttachments(const std::vector<RawFile>& files) {
    if (files.empty()) return {};
    Bytes children;
    for (const RawFile& file : files) children.insert(children.end(), file.element.begin(), file.element.end());
    Bytes attachments;
    AppendCheckedMaster(attachments, kAttachments, children);
    return attachments;
}

Bytes BuildChapters(const std::vector<ChapterMark>& marks) {
    if (marks.empty()) return {};
    constexpr std::uint64_t kNanosecondsPerMs = 1'000'000;
    Bytes edition;
    AppendUnsigned(edition, kEditionFlagDefault, 1);
    std::uint64_t number = 0;
    for (const ChapterMark& mark : marks) {
        Bytes display;
        AppendText(display, kChapString, mark.title);
        AppendText(display, kChapLanguage, "und");
        Bytes atom;
        AppendUnsigned(atom, kChapterUid, ++number);
        AppendUnsigned(atom, kChapterTimeStart, static_cast<std::uint64_t>(mark.ms) * kNanosecondsPerMs);
        AppendBinary(atom, kChapterDisplay, display);
        AppendBinary(edition, kChapterAtom, atom);
    }
    Bytes children;
    AppendBinary(children, kEditionEntry, edition);
    Bytes chapters;
    AppendCheckedMaster(chapters, kChapters, children);
    return chapters;
}

/// Elements ready to be placed: attachments, then chapters; either may be missing.
struct Set {
    Bytes bytes;
    std::uint64_t chaptersOffset = 0;  ///< 0 without chapters

    bool Fits() const { return bytes.size() + kLongHeaderSize <= kSlotSize; }
};

Set BuildSet(const std::vector<RawFile>& files, const std::vector<ChapterMark>& marks) {
    Set set{BuildAttachments(files), 0};
    const Bytes chapters = BuildChapters(marks);
    if (!chapters.empty()) set.chaptersOffset = set.bytes.size();
    set.bytes.insert(set.bytes.end(), chapters.begin(), chapters.end());
    return set;
}

/// A long Void header, filled up to the width of every other header that can stand at a switch.
Bytes HidingHeader(std::uint64_t coveredBytes) {
    Bytes header = LongVoidHeader(coveredBytes);
    header.resize(kLongHeaderSize);
    return header;
}

void Append(Bytes& target, std::span<const std::uint8_t> part) {
    target.insert(target.end(), part.begin(), part.end());
}

/// Writes `set` into the Void from `position` to `voidEnd` and turns the Void into it by its first header.
void WriteUnderVoid(IStorage& storage, std::uint64_t position, std::uint64_t voidEnd, const Bytes& set) {
    Bytes content(set.begin() + kLongHeaderSize, set.end());
    Append(content, LongVoidHeader(voidEnd - position - set.size()));
    storage.WriteAt(position + kLongHeaderSize, content);
    storage.Sync();
    storage.WriteAt(position, std::span(set).first(kLongHeaderSize));
    storage.Sync();
}

class FrontRegion {
  public:
    explicit FrontRegion(IStorage& storage) : m_storage(storage) {}

    /// Makes `set` the one that counts; an empty one leaves the region without files.
    void Switch(const Bytes& set) {
        if (set.empty()) return Flip(HidingHeader(kMediaAt - kRegionAt));
        if (FirstSlotCounts()) {
            Bytes content = set;
            Append(content, LongVoidHeader(kMediaAt - kSecondSlotAt - set.size()));
            m_storage.WriteAt(kSecondSlotAt, content);
            m_storage.Sync();
            return Flip(HidingHeader(kSlotSize));
        }
        WriteUnderVoid(m_storage, kRegionAt, kMediaAt, set);
    }

  private:
    bool FirstSlotCounts() {
        const auto element = ReadElement(m_storage, kRegionAt, kMediaAt);
        return element && element->id != kVoid;
    }

    void Flip(std::span<const std::uint8_t> header) {
        m_storage.WriteAt(kRegionAt, header);
        m_storage.Sync();
    }

    IStorage& m_storage;
};

class Replacement {
  public:
    Replacement(IStorage& storage, const PackageMap& map, const ReserveTail& reserveTail)
        : m_storage(storage), m_map(map), m_reserveTail(reserveTail) {
        if (!m_map.ownLayout) throw Error(ErrorKind::kDamaged, "The head of the package is damaged.", 0);
    }

    void CopyFrom(IStorage& source, const PackageMap& map) {
        LoadRawFiles(source, map);
        Place(true);
    }

    void Apply(const StoredFiles& changes) {
        LoadRawFiles(m_storage, m_map);
        bool filesChange = false;
        for (const auto& [name, content] : changes) {
            ApplyOne(name, content);
            filesChange = filesChange || name != kJournalName;
        }
        Place(filesChange);
    }

  private:
    void LoadRawFiles(IStorage& source, const PackageMap& map) {
        for (const AttachedFile& file : map.files) {
            auto element = ReadExactly(source, file.element.position, file.element.End() - file.element.position);
            const bool known = std::any_of(m_files.begin(), m_files.end(),
                                           [&](const RawFile& other) { return other.name == file.name; });
            if (element && !known) m_files.push_back({file.name, *std::move(element)});
            if (file.name == kProjectFileName && !known) m_marks = ChapterMarksOf(ReadAttachedFile(source, file));
        }
        if (!FilesAreSound(source, map))
            throw Error(ErrorKind::kDamaged, "The stored files of the package are damaged.", 0);
    }

    void ApplyOne(const std::string& name, const std::optional<Bytes>& content) {
        const auto old =
            std::find_if(m_files.begin(), m_files.end(), [&](const RawFile& file) { return file.name == name; });
        if (name == kProjectFileName) m_marks = content ? ChapterMarksOf(*content) : std::vector<ChapterMark>();
        if (!content) {
            if (old != m_files.end()) m_files.erase(old);
        } else if (old != m_files.end()) {
            *old = MakeRawFile(name, *content);
        } else {
            m_files.push_back(MakeRawFile(name, *content));
        }
    }

    void Place(bool filesChange) {
        const Set all = BuildSet(m_files, m_marks);
        if (all.Fits()) {
            FrontRegion(m_storage).Switch(all.bytes);
            return ForgetTailSet();
        }
        const auto journal =
            std::find_if(m_files.begin(), m_files.end(), [](const RawFile& file) { return file.name == kJournalName; });
        Set front;
        if (journal != m_files.end()) front = BuildSet({*journal}, {});
        if (!front.Fits()) front = {};  // a giant journal goes along with the files
        if (!front.bytes.empty()) m_files.erase(journal);
        const bool tailStands = TailSetCounts() && !filesChange && !front.bytes.empty();
        if (!tailStands) PlaceBehindMedia(front.bytes.empty() ? all : BuildSet(m_files, m_marks));
        FrontRegion(m_storage).Switch(front.bytes);
        if (!tailStands) HideOldTailSet();
    }

    bool TailSetCounts() const {
        return std::any_of(m_map.fileSets.begin(), m_map.fileSets.end(),
                           [&](const Element& set) { return set.position == m_map.head.attachments; });
    }

    void PlaceBehindMedia(const Set& set) {
        const TailRoom room = m_reserveTail(set.bytes.size());
        if (room.voidEnd == 0) {
            m_storage.WriteAt(room.position, set.bytes);
        } else {
            WriteUnderVoid(m_storage, room.position, room.voidEnd, set.bytes);
        }
        m_storage.Sync();
        Head head = ReadMap(m_storage).head;
        head.attachments = room.position;
        head.chapters = set.chaptersOffset == 0 ? 0 : room.position + set.chaptersOffset;
        m_storage.WriteAt(0, BuildHead(head));
        m_storage.Sync();
    }

    void ForgetTailSet() {
        if (m_map.head.attachments == 0) return;
        Head head = m_map.head;
        head.attachments = 0;
        head.chapters = 0;
        m_storage.WriteAt(0, BuildHead(head));
        m_storage.Sync();
        HideOldTailSet();
    }

    /// Nothing names the old set any more; a Void keeps other readers from finding it.
    void HideOldTailSet() {
        const auto set = ReadElement(m_storage, m_map.head.attachments, m_map.fileSize);
        if (m_map.head.attachments < kMediaAt || !set || set->id != kAttachments) return;
        std::uint64_t end = set->End();
        const auto chapters = ReadElement(m_storage, m_map.head.chapters, m_map.fileSize);
        if (chapters && chapters->id == kChapters && chapters->position == end) end = chapters->End();
        m_storage.WriteAt(set->position, LongVoidHeader(end - set->position));
    }

    IStorage& m_storage;
    const PackageMap& m_map;
    const ReserveTail& m_reserveTail;
    std::vector<RawFile> m_files;
    std::vector<ChapterMark> m_marks;
};

/// The Voids between the media and the set that counts, if they are big enough for another: sets take turns there.
std::optional<TailRoom> HoleInTail(IStorage& storage, const PackageMap& map, std::uint64_t bytes) {
    const std::uint64_t end = map.head.attachments;
    std::uint64_t position = map.cues ? map.cues->End() : map.mediaBegin;
    std::optional<std::uint64_t> begin;
    while (position < end) {
        const auto element = ReadElement(storage, position, end);
        if (!element || element->unknownSize || element->id != kVoid) return std::nullopt;
        const bool usable = PaddingBefore(position) == 0 && element->data - position == kLongVoidHeaderSize;
        if (!begin && usable) begin = position;
        position = element->End();
    }
    if (!begin || end - *begin < bytes + kLongVoidHeaderSize) return std::nullopt;
    storage.WriteAt(*begin, LongVoidHeader(end - *begin));
    return TailRoom{*begin, end};
}

TailRoom RoomAtEnd(IStorage& storage) {
    const std::uint64_t end = storage.Size();
    const std::uint64_t padding = PaddingBefore(end);
    if (padding == 0) return {end, 0};
    Bytes filler;
    AppendVoid(filler, padding);
    storage.WriteAt(end, filler);
    return {end + padding, 0};
}

}  // namespace

void ReplaceFiles(IStorage& storage, const StoredFiles& changes, const ReserveTail& reserveTail) {
    const PackageMap map = ReadMap(storage);
    Replacement(storage, map, reserveTail).Apply(changes);
}

void ReplaceFilesOfClosedPackage(IStorage& storage, const StoredFiles& changes) {
    ReplaceFilesOfClosedPackage(storage, ReadMap(storage), changes);
}

void ReplaceFilesOfClosedPackage(IStorage& storage, const PackageMap& map, const StoredFiles& changes) {
    const ReserveTail reserve = [&](std::uint64_t bytes) {
        if (const auto hole = HoleInTail(storage, map, bytes)) return *hole;
        // What lies behind the last thing that counts is left over from a change that was cut short.
        storage.Truncate(map.referencedEnd);
        return RoomAtEnd(storage);
    };
    Replacement(storage, map, reserve).Apply(changes);
    const bool hasTail = map.head.attachments != 0 || storage.Size() != map.referencedEnd;
    if (!hasTail) return;
    // Old sets at the end of the file are given back.
    const PackageMap now = ReadMap(storage);
    if (now.tailWhole && now.referencedEnd < now.fileSize) storage.Truncate(now.referencedEnd);
}

void CopyFiles(IStorage& source, const PackageMap& sourceMap, IStorage& target) {
    const ReserveTail reserve = [&](std::uint64_t) { return RoomAtEnd(target); };
    const PackageMap map = ReadMap(target);
    Replacement(target, map, reserve).CopyFrom(source, sourceMap);
}

StoredFiles LoadAttachedFiles(IStorage& storage, const PackageMap& map) {
    if (!FilesAreSound(storage, map))
        throw Error(ErrorKind::kDamaged, "The stored files of the package are damaged.", 0);
    StoredFiles files;
    for (const AttachedFile& file : map.files)
        if (files.count(file.name) == 0) files[file.name] = ReadAttachedFile(storage, file);
    return files;
}

}  // namespace kestrum::media
