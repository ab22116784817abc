// The growing end of a package: collects blocks, groups them into clusters of about a second, and hands them to the
// file when it is told. A cluster begins with every key frame, so that a list of key frames can be made from the
// clusters' beginnings.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "media/package/MediaScan.h"

namespace kestrum::media {

class ClusterWriter {
  public:
    /// Writes from `end` on; nothing that counts lies behind it.
    ClusterWriter(IStorage& storage, std::uint64_t end) : m_storage(storage), m_end(end) {}

    /// Adds a block. Throws without having added it if a full buffer cannot be written.
    void Write(std::uint64_t track, std::int64_t ms, bool key, std::span<const std::uint8_t> sample);
    /// Hands all blocks to the system. After a failure it can be called again.
    void Flush();
    /// Ends the cluster that is being written, if any.
    void CloseCluster();
    /// A Void of `bytes` and a header more at the end, for a set of files; the first header lies within one sector.
    /// Returns its position.
    std::uint64_t AppendRoom(std::uint64_t bytes);
    /// Where the next byte goes, once all is flushed.
    std::uint64_t End() const { return m_end + m_pending.size(); }
    /// The places to seek to that were written here.
    const std::vector<CueEntry>& Cues() const { return m_cues; }

  private:
    struct Cluster {
        std::uint64_t position = 0;
        std::int64_t timestamp = 0;
        std::uint32_t checksum = 0;
        bool hasBlocks = false;
    };

    bool NeedsNewCluster(std::int64_t ms, bool pictureKey) const;
    void BeginCluster(std::int64_t ms);
    void AppendChecked(std::size_t from);
    void Pad();

    IStorage& m_storage;
    std::uint64_t m_end;  ///< file position of the first pending byte
    Bytes m_pending;
    std::optional<Cluster> m_cluster;
    std::vector<CueEntry> m_cues;
};

}  // namespace kestrum::media
