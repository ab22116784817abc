#include "media/legacy/Decryption.h"

#include <zlib.h>

#include <algorithm>

#include "media/legacy/BlockCipher.h"
#include "media/package/Ebml.h"
#include "media/package/Recovery.h"
#include "media/package/TrackReader.h"

namespace kestrum::media {

namespace {

using namespace ebml;

constexpr std::uint64_t kLargestMaster = 256 << 20;

/// A master element in memory. Its check sum is made anew only if it was right: damage stays visible.
class LoadedMaster {
  public:
    LoadedMaster(IStorage& storage, const Element& master)
        : m_storage(storage), m_master(master), m_checked(CheckCrc(storage, master) == CrcState::kRight) {
        if (master.size > kLargestMaster)
            throw Error(ErrorKind::kDamaged, "A part of the package is too large to be one.", 0);
        auto data = ReadExactly(storage, master.data, master.size);
        if (!data) throw Error(ErrorKind::kDamaged, "The package ends too early.", 0);
        m_data = *std::move(data);
    }

    /// The bytes of an element that was found in the storage.
    std::span<std::uint8_t> At(std::uint64_t position, std::uint64_t size) {
        return std::span(m_data).subspan(position - m_master.data, size);
    }

    /// Puts a Void in the place of an element.
    void Erase(const Element& element) {
        Bytes nothing;
        AppendVoid(nothing, element.End() - element.position);
        const auto place = At(element.position, nothing.size());
        std::copy(nothing.begin(), nothing.end(), place.begin());
    }

    void Store() {
        if (m_checked) {
            const auto checked = std::span(m_data).subspan(kCrcElementSize);
            Bytes crc;
            AppendCrc(crc, static_cast<std::uint32_t>(crc32_z(crc32(0, nullptr, 0), checked.data(), checked.size())));
            std::copy(crc.begin(), crc.end(), m_data.begin());
        }
        m_storage.WriteAt(m_master.data, m_data);
    }

  private:
    IStorage& m_storage;
    Element m_master;
    bool m_checked;
    Bytes m_data;
};

struct BlockHead {
    std::uint64_t track = 0;
    std::int64_t relativeMs = 0;
};

/// Track, 16-bit position within the cluster, flags.
constexpr std::uint64_t kBlockHeadSize = 4;

BlockHead ReadBlockHead(std::span<const std::uint8_t> head) {
    const auto relative = static_cast<std::int16_t>((head[1] << 8) | head[2]);
    return {static_cast<std::uint64_t>(head[0] & 0x7F), relative};
}

void DecryptCluster(IStorage& storage, const Element& cluster, BlockCipher& cipher) {
    LoadedMaster loaded(storage, cluster);
    std::int64_t clusterMs = 0;
    ForEachChild(storage, cluster.data, cluster.End(), [&](const Element& child) {
        if (child.id == kTimestamp) clusterMs = static_cast<std::int64_t>(ReadUnsigned(storage, child));
        if (child.id != kSimpleBlock || child.size < kBlockHeadSize) return true;
        const BlockHead head = ReadBlockHead(loaded.At(child.data, kBlockHeadSize));
        cipher.Apply(head.track, clusterMs + head.relativeMs,
                     loaded.At(child.data + kBlockHeadSize, child.size - kBlockHeadSize));
        return true;
    });
    loaded.Store();
}

void DecryptMedia(IStorage& storage, const PackageMap& map, BlockCipher& cipher, WatchedPart part) {
    for (std::uint64_t position = map.mediaBegin; position < map.fileSize;) {
        const auto element = ReadElement(storage, position, map.fileSize);
        if (!element || element->unknownSize)
            throw Error(ErrorKind::kDamaged, "The media cannot be read at byte " + std::to_string(position) + ".", 0);
        if (element->id == kCluster) DecryptCluster(storage, *element, cipher);
        position = element->End();
        part.Reached(position);
    }
}

/// Erases the elements `inner` of the children `outer` of a master that `matches`.
template <class Matches>
void EraseInside(IStorage& storage, const Element& master, std::uint32_t outer, const Matches& matches) {
    LoadedMaster loaded(storage, master);
    ForEachChild(storage, master.data, master.End(), [&](const Element& child) {
        if (child.id != outer) return true;
        ForEachChild(storage, child.data, child.End(), [&](const Element& inner) {
            if (matches(inner)) loaded.Erase(inner);
            return true;
        });
        return true;
    });
    loaded.Store();
}

bool IsKeyTag(IStorage& storage, const Element& element) {
    bool found = false;
    if (element.id != kSimpleTag) return false;
    ForEachChild(storage, element.data, element.End(), [&](const Element& child) {
        found = found || (child.id == kTagName && ReadText(storage, child, 64) == kEncryptionKeyTag);
        return true;
    });
    return found;
}

/// Takes flag and key out of what lies in front of the media.
void ForgetEncryption(IStorage& storage, const PackageMap& map) {
    ForEachChild(storage, SegmentDataPosition(), map.mediaBegin, [&](const Element& element) {
        if (element.id == kTracks)
            EraseInside(storage, element, kTrackEntry,
                        [](const Element& child) { return child.id == kContentEncodings; });
        if (element.id == kTags)
            EraseInside(storage, element, kTag, [&](const Element& child) { return IsKeyTag(storage, child); });
        return true;
    });
}

}  // namespace

bool DecryptPackage(const std::string& path, const Watch& watch) {
    constexpr int kCopied = 50, kDone = 100;
    const SourcePackage source = OpenSource(path, FileStorage::Access::kReadWrite);
    if (!source.map.encrypted) return false;
    BlockCipher cipher(source.map.encryptionKey);
    FileStorage::Create(path, FileStorage::Collision::kReplace, [&](IStorage& target) {
        CopyBytes(*source.storage, target, {watch, 0, kCopied, source.map.fileSize});
        RecoverIfInterrupted(target);
        const PackageMap map = ReadMap(target);
        DecryptMedia(target, map, cipher, {watch, kCopied, kDone, map.fileSize});
        ForgetEncryption(target, map);
    });
    return true;
}

}  // namespace kestrum::media
