#include "media/package/OpenPackage.h"

#include <utility>

#include "media/package/Error.h"
#include "media/package/OwnLayout.h"
#include "media/package/Recovery.h"

namespace kestrum::media {

namespace {

using namespace ebml;

void RequireWritable(const PackageMap& map) {
    if (!map.IsOurs()) throw Error(ErrorKind::kNotAPackage, "The file is not a Kestrum package.", 0);
    if (map.formatVersion != kFormatVersion)
        throw Error(ErrorKind::kNotAPackage,
                    "The package has the format version " + std::to_string(map.formatVersion / 256) + "." +
                        std::to_string(map.formatVersion % 256) + ", which this program cannot write.",
                    0);
    if (!map.headReadable) throw Error(ErrorKind::kDamaged, "The head of the package is damaged.", 0);
}

OpenedPackage WithMap(std::unique_ptr<IStorage> storage) {
    PackageMap map = ReadMap(*storage);
    return {std::move(storage), std::move(map)};
}

}  // namespace

OpenedPackage OpenExisting(const std::string& path) {
    auto storage = FileStorage::Open(path, FileStorage::Access::kReadWrite);
    if (storage->LockExclusive() == LockResult::kHeldByOther)
        throw Error(ErrorKind::kLocked, "'" + path + "' is being recorded or written by another program.", 0);
    PackageMap map = ReadMap(*storage);
    RequireWritable(map);
    if (map.ownLayout) return {std::move(storage), std::move(map)};
    return WithMap(FileStorage::Create(path, FileStorage::Collision::kReplace,
                                       [&](IStorage& target) { CopyIntoOwnLayout(*storage, map, target); }));
}

OpenedPackage OpenOrCreate(const std::string& path) {
    if (FileStorage::Exists(path)) return OpenExisting(path);
    return WithMap(FileStorage::Create(path, FileStorage::Collision::kRefuse, [](IStorage& target) {
        target.WriteAt(0, BuildEmptyPackage());
        target.Truncate(kMediaAt);
    }));
}

std::optional<RecoveryReport> PrepareForWriting(OpenedPackage& opened) {
    auto& [storage, map] = opened;
    RequireWritable(map);
    const bool isInterrupted = map.IsInterrupted();
    const auto recovered = RecoverIfInterrupted(*storage, map);
    if (isInterrupted) map = ReadMap(*storage);
    if (map.tailWhole && map.referencedEnd < map.fileSize) {
        storage->Truncate(map.referencedEnd);
        map.fileSize = map.referencedEnd;
    }
    return recovered;
}

void WriteTracks(IStorage& storage, const TrackConfigs& tracks) {
    const Bytes room = BuildTracksRoom(tracks);
    Bytes hidden = LongVoidHeader(kRegionAt - kTracksAt);
    hidden.resize(kLongHeaderSize);
    storage.WriteAt(kTracksAt, hidden);
    storage.WriteAt(kTracksAt + kLongHeaderSize, std::span(room).subspan(kLongHeaderSize));
    storage.Sync();
    storage.WriteAt(kTracksAt, std::span(room).first(kLongHeaderSize));
    Head head = ReadMap(storage).head;
    head.tracks = kTracksAt;
    storage.WriteAt(0, BuildHead(head));
    storage.Sync();
}

}  // namespace kestrum::media
