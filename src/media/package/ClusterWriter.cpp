#include "media/package/ClusterWriter.h"

#include <zlib.h>

#include "media/package/ClusterFormat.h"
#include "media/package/Ebml.h"
#include "media/package/Layout.h"

namespace kestrum::media {

namespace {

constexpr std::int64_t kClusterMs = 1000;
constexpr std::uint64_t kLargestCluster = 16 << 20;
constexpr std::size_t kFullBuffer = 1 << 20;

}  // namespace

void ClusterWriter::Write(std::uint64_t track, std::int64_t ms, bool key, std::span<const std::uint8_t> sample) {
    const bool pictureKey = key && track == kVideoTrack;
    if (m_pending.size() >= kFullBuffer) Flush();
    if (NeedsNewCluster(ms, pictureKey)) {
        CloseCluster();
        BeginCluster(ms);
    }
    if (!m_cluster->hasBlocks && (pictureKey || (m_cues.empty() && track == kAudioTrack)))
        m_cues.push_back({ms, m_cluster->position, track});
    const std::size_t from = m_pending.size();
    AppendSimpleBlock(m_pending, track, static_cast<int>(ms - m_cluster->timestamp), key, sample);
    AppendChecked(from);
    m_cluster->hasBlocks = true;
}

bool ClusterWriter::NeedsNewCluster(std::int64_t ms, bool pictureKey) const {
    if (!m_cluster) return true;
    const std::int64_t relative = ms - m_cluster->timestamp;
    const bool outOfRange = relative < INT16_MIN || relative > INT16_MAX;
    const bool full = relative >= kClusterMs || End() - m_cluster->position >= kLargestCluster;
    return m_cluster->hasBlocks && (pictureKey || full || outOfRange);
}

void ClusterWriter::BeginCluster(std::int64_t ms) {
    Pad();
    m_cluster = Cluster{End(), ms, static_cast<std::uint32_t>(crc32(0, nullptr, 0)), false};
    const std::size_t begin = m_pending.size();
    const Bytes header = OpenClusterHeader(ms);
    m_pending.insert(m_pending.end(), header.begin(), header.end());
    AppendChecked(begin + kClusterCheckedAt);
}

/// Takes the pending bytes from `from` on into the cluster's check sum.
void ClusterWriter::AppendChecked(std::size_t from) {
    m_cluster->checksum = static_cast<std::uint32_t>(
        crc32_z(m_cluster->checksum, m_pending.data() + from, static_cast<z_size_t>(m_pending.size() - from)));
}

void ClusterWriter::Pad() {
    const std::uint64_t padding = PaddingBefore(End());
    if (padding != 0) ebml::AppendVoid(m_pending, padding);
}

void ClusterWriter::Flush() {
    if (m_pending.empty()) return;
    m_storage.WriteAt(m_end, m_pending);
    m_end += m_pending.size();
    m_pending.clear();
}

void ClusterWriter::CloseCluster() {
    Flush();
    if (!m_cluster) return;
    const std::uint64_t dataSize = m_end - m_cluster->position - kClusterDataAt;
    m_storage.WriteAt(m_cluster->position + kClusterSealAt, ClusterSeal(dataSize, m_cluster->checksum));
    m_cluster.reset();
}

std::uint64_t ClusterWriter::AppendRoom(std::uint64_t bytes) {
    CloseCluster();
    Pad();
    Flush();
    const std::uint64_t position = m_end;
    const std::uint64_t size = bytes + ebml::kLongVoidHeaderSize;
    m_storage.WriteAt(position, ebml::LongVoidHeader(size));
    m_storage.Truncate(position + size);
    m_end += size;
    return position;
}

}  // namespace kestrum::media
