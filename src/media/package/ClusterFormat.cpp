#include "media/package/ClusterFormat.h"

#include "media/package/Ebml.h"

namespace kestrum::media {

using namespace ebml;

Bytes OpenClusterHeader(std::int64_t timestampMs) {
    Bytes header;
    AppendId(header, kCluster);
    AppendLongSize(header, kUnknownSize);
    AppendVoid(header, kCrcElementSize);
    AppendLongUnsigned(header, kTimestamp, static_cast<std::uint64_t>(timestampMs));
    return header;
}

Bytes ClusterSeal(std::uint64_t dataSize, std::uint32_t checksum) {
    Bytes seal;
    AppendLongSize(seal, dataSize);
    AppendCrc(seal, checksum);
    return seal;
}

void AppendSimpleBlock(Bytes& target, std::uint64_t track, int relativeMs, bool key,
                       std::span<const std::uint8_t> sample) {
    constexpr std::size_t kBlockHeaderSize = 4;
    constexpr std::uint8_t kKeyFlag = 0x80;
    AppendId(target, kSimpleBlock);
    AppendSize(target, kBlockHeaderSize + sample.size());
    target.push_back(static_cast<std::uint8_t>(0x80 | track));
    target.push_back(static_cast<std::uint8_t>(relativeMs >> 8));
    target.push_back(static_cast<std::uint8_t>(relativeMs));
    target.push_back(key ? kKeyFlag : 0);
    target.insert(target.end(), sample.begin(), sample.end());
}

}  // namespace kestrum::media
