#include "media/legacy/LegacyFolder.h"

#include <cmath>

#include "media/legacy/LegacyProject.h"
#include "media/package/FileSet.h"
#include "media/package/Layout.h"
#include "media/package/OwnLayout.h"
#include "media/package/Recovery.h"

namespace kestrum::media {

namespace {

/// Passes everything on and tells how far the writing is.
class WatchedStorage final : public IStorage {
  public:
    WatchedStorage(IStorage& inner, const WatchedPart& part) : m_inner(inner), m_part(part) {}

    std::uint64_t Size() override { return m_inner.Size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) override {
        return m_inner.ReadAt(position, target);
    }
    void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) override {
        m_inner.WriteAt(position, data);
        m_part.Reached(position + data.size());
    }
    void Truncate(std::uint64_t size) override { m_inner.Truncate(size); }
    void Sync() override { m_inner.Sync(); }

  private:
    IStorage& m_inner;
    WatchedPart m_part;
};

SourcePackage OpenMedia(const std::string& path) {
    constexpr int kOldestMajor = 6;
    SourcePackage media = OpenSource(path, FileStorage::Access::kRead);
    const int major = media.map.formatVersion / 256;
    if (major < kOldestMajor || major > kFormatVersion / 256)
        throw Error(ErrorKind::kNotAPackage,
                    "'" + path + "' has the format version " + std::to_string(major) + ", which is not known here.", 0);
    if (media.map.encrypted)
        throw Error(ErrorKind::kDamaged, "'" + path + "' is encrypted. Decrypt it first (ksECT).", 0);
    return media;
}

Bytes RequireFile(const std::string& path) {
    auto bytes = ReadWholeFile(path);
    if (!bytes) throw Error(ErrorKind::kMissing, "There is no '" + path + "'.", 0);
    return *std::move(bytes);
}

std::optional<Bytes> FirstOf(const std::string& path, const std::string& otherPath) {
    auto bytes = ReadWholeFile(path);
    return bytes ? std::move(bytes) : ReadWholeFile(otherPath);
}

StoredFiles FilesOf(const std::string& folder, std::int64_t lengthMs) {
    const std::string projectPath = folder + "/" + kProjectFileName;
    const auto project = UpgradeProject(RequireFile(projectPath), lengthMs);
    if (!project) throw Error(ErrorKind::kDamaged, "'" + projectPath + "' is no project file of generation 6 or 7.", 0);
    const std::string photo = project->photo.empty() ? kPhotoName : project->photo;
    StoredFiles files;
    files[kProjectFileName] = project->projectFile;
    files[kCursorImageName] = FirstOf(folder + "/icons/" + kCursorImageName, folder + "/" + kCursorImageName);
    files[kPhotoName] = FirstOf(folder + "/" + photo, folder + "/" + kPhotoName);
    files[kIndexTextName] = ReadWholeFile(folder + "/" + kIndexTextName);
    return files;
}

std::int64_t LengthOf(IStorage& storage) {
    return std::llround(ReadMap(storage).head.durationMs.value_or(0));
}

}  // namespace

void ConvertLegacyFolder(const std::string& folder, const std::string& target, const Watch& watch) {
    constexpr int kDone = 100;
    SourcePackage media = OpenMedia(folder + "/media.ks");
    FilesOf(folder, 0);  // a folder that cannot be converted is refused before its media are copied
    media.map.head.formatVersion = kFormatVersion;
    const WatchedPart whole(watch, 0, kDone, media.map.fileSize);
    FileStorage::Create(target, FileStorage::Collision::kRefuse, [&](IStorage& package) {
        WatchedStorage watched(package, whole);
        CopyIntoOwnLayout(*media.storage, media.map, watched);
        RecoverIfInterrupted(package);
        ReplaceFilesOfClosedPackage(package, FilesOf(folder, LengthOf(package)));
    });
}

}  // namespace kestrum::media
