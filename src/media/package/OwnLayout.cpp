#include "media/package/OwnLayout.h"

#include <algorithm>

#include "media/package/Error.h"
#include "media/package/FileSet.h"

namespace kestrum::media {

namespace {

using namespace ebml;

/// The masters of one kind in front of the media, with the header that our places need.
void AppendMasters(IStorage& source, const PackageMap& map, std::uint32_t id, Bytes& room) {
    ForEachChild(source, SegmentDataPosition(), map.mediaBegin, [&](const Element& element) {
        if (element.id != id) return true;
        AppendId(room, id);
        AppendLongSize(room, element.size);
        const Bytes children = ReadBinary(source, element, kRegionAt);
        room.insert(room.end(), children.begin(), children.end());
        return true;
    });
}

/// The tracks as the other program left them; nothing it wrote about them is lost if there is room for it.
Bytes TracksRoom(IStorage& source, const PackageMap& map) {
    constexpr std::uint64_t kRoom = kRegionAt - kTracksAt;
    Bytes room;
    AppendMasters(source, map, kTracks, room);
    AppendMasters(source, map, kTags, room);
    if (room.size() + kLongVoidHeaderSize > kRoom) return BuildTracksRoom(*map.tracks);
    AppendVoid(room, kRoom - room.size());
    return room;
}

void CopyMedia(IStorage& source, std::uint64_t end, IStorage& target) {
    Bytes buffer(1 << 20);
    for (std::uint64_t position = kMediaAt; position < end; position += buffer.size()) {
        const auto part = std::span(buffer).first(std::min<std::uint64_t>(buffer.size(), end - position));
        if (source.ReadAt(position, part) != part.size())
            throw Error(ErrorKind::kIo, "The package became shorter while it was copied.", 0);
        target.WriteAt(position, part);
    }
}

}  // namespace

void CopyIntoOwnLayout(IStorage& source, const PackageMap& map, IStorage& target) {
    if (map.mediaBegin != kMediaAt) throw Error(ErrorKind::kDamaged, "The head of the package is damaged.", 0);
    Head head = map.head;
    head.tracks = map.tracks ? kTracksAt : 0;
    head.attachments = 0;
    head.chapters = 0;
    Bytes front = BuildHead(head);
    Bytes room;
    if (map.tracks) room = TracksRoom(source, map);
    if (!map.tracks) AppendVoid(room, kRegionAt - kTracksAt);
    const Bytes region = LongVoidHeader(kMediaAt - kRegionAt);
    front.insert(front.end(), room.begin(), room.end());
    front.insert(front.end(), region.begin(), region.end());
    target.WriteAt(0, front);
    target.Truncate(map.fileSize);
    CopyMedia(source, map.fileSize, target);
    if (!ReadMap(target).ownLayout) throw Error(ErrorKind::kDamaged, "The head of the package is damaged.", 0);
    CopyFiles(source, map, target);
}

}  // namespace kestrum::media
