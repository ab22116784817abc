// The bytes of a cluster: a header that is open while the cluster grows and closed by one write of 14 bytes, and the
// blocks behind it.
#pragma once

#include <cstdint>
#include <span>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// From the cluster's header to the CRC-32, and from the data's begin to the first block.
constexpr std::uint64_t kClusterSealAt = 4;
constexpr std::uint64_t kClusterDataAt = 12;
constexpr std::uint64_t kClusterCheckedAt = 12 + 6;
constexpr std::uint64_t kFirstBlockOffset = 6 + 10;

/// An open cluster without blocks: unknown size, a Void where the check sum goes, the time stamp.
Bytes OpenClusterHeader(std::int64_t timestampMs);
/// Size and check sum, to be written at kClusterSealAt. `dataSize` counts from kClusterDataAt, `checksum` is zlib's
/// crc32 of everything from kClusterCheckedAt.
Bytes ClusterSeal(std::uint64_t dataSize, std::uint32_t checksum);
void AppendSimpleBlock(Bytes& target, std::uint64_t track, int relativeMs, bool key,
                       std::span<const std::uint8_t> sample);

}  // namespace kestrum::media
