#include "media/package/MediaScan.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kestrum::media {

namespace {

using namespace ebml;

struct Block {
    std::uint64_t track = 0;
    int relativeMs = 0;
    bool key = false;
};

std::optional<Block> ReadBlock(IStorage& storage, const Element& element) {
    std::array<std::uint8_t, 4> raw{};
    if (element.id != kSimpleBlock || element.size < raw.size()) return std::nullopt;
    if (storage.ReadAt(element.data, raw) != raw.size()) return std::nullopt;
    Block block;
    block.track = raw[0] & 0x7Fu;
    block.relativeMs = static_cast<std::int16_t>(raw[1] << 8 | raw[2]);
    block.key = (raw[3] & 0x80) != 0;
    return block;
}

/// What the blocks of one cluster say.
struct ClusterWalk {
    std::int64_t timestamp = 0;
    std::int64_t endMs = 0;
    std::optional<CueEntry> cue;
    bool anyBlock = false;
    std::uint64_t end = 0;  ///< behind the last whole child
};

class Scanner {
  public:
    Scanner(IStorage& storage, std::int64_t audioFrameMs, Damage damage)
        : m_storage(storage), m_audioFrameMs(audioFrameMs), m_damage(damage), m_fileSize(storage.Size()) {}

    MediaScan Run(std::uint64_t begin) {
        m_scan.goodEnd = begin;
        std::uint64_t position = begin;
        while (position < m_fileSize) {
            const std::uint64_t next = Step(position);
            if (next == position) {
                const auto resumed = Resume(position);
                if (!resumed) break;
                position = *resumed;
                continue;
            }
            position = next;
            m_scan.goodEnd = next;
        }
        for (const Element& cluster : m_lastClosed) Take(Walk(cluster, cluster.End(), false));
        return std::move(m_scan);
    }

  private:
    /// The end of the whole element at `position`; `position` itself if there is none.
    std::uint64_t Step(std::uint64_t position) {
        const auto element = ReadElement(m_storage, position, m_fileSize);
        if (!element) return StepOpenCluster(position, ReadElement(m_storage, position, ~std::uint64_t{0}));
        if (element->id == kCluster && element->unknownSize) return StepOpenCluster(position, element);
        if (element->unknownSize) return position;
        if (element->id == kCluster) return StepClosedCluster(*element);
        if (element->id == kCues) m_scan.leftovers.push_back(*element);
        const bool passed = element->id == kCues || element->id == kVoid || element->id == kAttachments ||
                            element->id == kChapters || element->id == kTags;
        return passed ? element->End() : position;
    }

    std::uint64_t StepClosedCluster(const Element& cluster) {
        const ClusterWalk first = Walk(cluster, cluster.End(), true);
        if (!first.anyBlock) return first.end == cluster.End() ? first.end : cluster.position;
        m_scan.anyCluster = true;
        Take(first);
        if (m_lastClosed.size() == 2) m_lastClosed.erase(m_lastClosed.begin());
        m_lastClosed.push_back(cluster);
        return cluster.End();
    }

    /// A cluster whose size is unknown, or reaches beyond the end of the file.
    std::uint64_t StepOpenCluster(std::uint64_t position, const std::optional<Element>& cluster) {
        if (!cluster || cluster->id != kCluster) return position;
        const ClusterWalk walk = Walk(*cluster, m_fileSize, false);
        if (!walk.anyBlock) return position;
        m_scan.anyCluster = true;
        m_scan.openClusters.push_back({position, walk.end});
        Take(walk);
        return walk.end;
    }

    void Take(const ClusterWalk& walk) {
        m_scan.endMs = std::max(m_scan.endMs, walk.endMs);
        if (!walk.cue) return;
        const bool known = !m_scan.cues.empty() && m_scan.cues.back().cluster >= walk.cue->cluster;
        // Sound has a place of its own only where there is no picture to seek to.
        const bool needless = walk.cue->track == kAudioTrack && !m_scan.cues.empty();
        if (!known && !needless) m_scan.cues.push_back(*walk.cue);
    }

    ClusterWalk Walk(const Element& cluster, std::uint64_t limit, bool firstBlockOnly) {
        ClusterWalk walk;
        walk.end = cluster.data;
        while (walk.end < limit) {
            const auto child = ReadElement(m_storage, walk.end, limit);
            if (!child || child->unknownSize || !VisitChild(*child, cluster.position, walk)) break;
            walk.end = child->End();
            if (firstBlockOnly && walk.anyBlock) break;
        }
        return walk;
    }

    /// False for what does not belong into a cluster.
    bool VisitChild(const Element& child, std::uint64_t cluster, ClusterWalk& walk) {
        if (child.id == kTimestamp) {
            // Positions are 32-bit; a greater one is damage and must not overflow what follows.
            walk.timestamp =
                static_cast<std::int64_t>(std::min<std::uint64_t>(ReadUnsigned(m_storage, child), 1u << 31));
            return true;
        }
        if (child.id == kVoid || child.id == kCrc32 || child.id == kBlockGroup) return true;
        const auto block = ReadBlock(m_storage, child);
        if (!block) return false;
        const std::int64_t ms = std::max<std::int64_t>(0, walk.timestamp + block->relativeMs);
        const bool audio = block->track == kAudioTrack;
        const bool screenKey = block->key && block->track == kVideoTrack;
        if (!walk.anyBlock && (audio || screenKey)) walk.cue = CueEntry{ms, cluster, audio ? kAudioTrack : kVideoTrack};
        walk.anyBlock = true;
        walk.endMs = std::max(walk.endMs, ms + (audio ? m_audioFrameMs : 1));
        return true;
    }

    /// The next whole cluster behind an unreadable piece. What lies in between stays in the file, as a Void.
    std::optional<std::uint64_t> Resume(std::uint64_t position) {
        if (m_damage == Damage::kStop) return std::nullopt;
        constexpr std::array<std::uint8_t, 5> kMark{0x1F, 0x43, 0xB6, 0x75, 0x01};
        // A Void that takes the place of the piece needs a header.
        std::uint64_t search = position + kLongVoidHeaderSize;
        Bytes window(1 << 16);
        while (search + kMark.size() <= m_fileSize) {
            const std::size_t got = m_storage.ReadAt(search, window);
            const auto end = window.begin() + static_cast<std::ptrdiff_t>(got);
            const auto found = std::search(window.begin(), end, kMark.begin(), kMark.end());
            if (found == end) {
                search += got < window.size() ? got : got - kMark.size() + 1;
                continue;
            }
            search += static_cast<std::uint64_t>(found - window.begin());
            if (IsWholeCluster(search)) {
                m_scan.gaps.push_back({position, search});
                return search;
            }
            ++search;
        }
        return std::nullopt;
    }

    bool IsWholeCluster(std::uint64_t position) {
        const auto cluster = ReadElement(m_storage, position, m_fileSize);
        if (!cluster || cluster->unknownSize || cluster->size > m_searchBudget) return false;
        m_searchBudget -= cluster->size;
        return CheckCrc(m_storage, *cluster) == CrcState::kRight;
    }

    IStorage& m_storage;
    const std::int64_t m_audioFrameMs;
    const Damage m_damage;
    const std::uint64_t m_fileSize;
    /// Bytes that the search may read for check sums: bounds the time that a hostile file can take.
    std::uint64_t m_searchBudget = 4 * m_fileSize;
    std::vector<Element> m_lastClosed;
    MediaScan m_scan;
};

}  // namespace

MediaScan ScanMedia(IStorage& storage, std::uint64_t begin, std::int64_t audioFrameMs, Damage damage) {
    return Scanner(storage, audioFrameMs, damage).Run(begin);
}

std::int64_t AudioFrameMs(int sampleRate) {
    constexpr std::int64_t kSamplesPerUnit = 1024;
    return sampleRate > 0 ? (kSamplesPerUnit * 1000 + sampleRate - 1) / sampleRate : 1;
}

}  // namespace kestrum::media
