// The grammar below Matroska (RFC 8794): element headers read from a storage, elements appended to a byte vector, and
// the identifiers that packages use. Sizes that are patched or flipped later are written in eight bytes, so that a
// header has one known length.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "media/package/Storage.h"

namespace kestrum::media::ebml {

// Identifiers, RFC 8794 section 11 and RFC 9559 section 5.
constexpr std::uint32_t kEbmlHead = 0x1A45DFA3;
constexpr std::uint32_t kDocType = 0x4282;
constexpr std::uint32_t kVoid = 0xEC;
constexpr std::uint32_t kCrc32 = 0xBF;
constexpr std::uint32_t kSegment = 0x18538067;
constexpr std::uint32_t kSeekHead = 0x114D9B74;
constexpr std::uint32_t kSeek = 0x4DBB;
constexpr std::uint32_t kSeekId = 0x53AB;
constexpr std::uint32_t kSeekPosition = 0x53AC;
constexpr std::uint32_t kInfo = 0x1549A966;
constexpr std::uint32_t kSegmentUuid = 0x73A4;
constexpr std::uint32_t kTimestampScale = 0x2AD7B1;
constexpr std::uint32_t kDuration = 0x4489;
constexpr std::uint32_t kDateUtc = 0x4461;
constexpr std::uint32_t kMuxingApp = 0x4D80;
constexpr std::uint32_t kWritingApp = 0x5741;
constexpr std::uint32_t kTracks = 0x1654AE6B;
constexpr std::uint32_t kTrackEntry = 0xAE;
constexpr std::uint32_t kTrackNumber = 0xD7;
constexpr std::uint32_t kTrackUid = 0x73C5;
constexpr std::uint32_t kTrackType = 0x83;
constexpr std::uint32_t kFlagLacing = 0x9C;
constexpr std::uint32_t kLanguage = 0x22B59C;
constexpr std::uint32_t kCodecId = 0x86;
constexpr std::uint32_t kCodecPrivate = 0x63A2;
constexpr std::uint32_t kContentEncodings = 0x6D80;
constexpr std::uint32_t kContentEncoding = 0x6240;
constexpr std::uint32_t kContentEncryption = 0x5035;
constexpr std::uint32_t kVideo = 0xE0;
constexpr std::uint32_t kFlagInterlaced = 0x9A;
constexpr std::uint32_t kPixelWidth = 0xB0;
constexpr std::uint32_t kPixelHeight = 0xBA;
constexpr std::uint32_t kAudio = 0xE1;
constexpr std::uint32_t kSamplingFrequency = 0xB5;
constexpr std::uint32_t kChannels = 0x9F;
constexpr std::uint32_t kTags = 0x1254C367;
constexpr std::uint32_t kTag = 0x7373;
constexpr std::uint32_t kTargets = 0x63C0;
constexpr std::uint32_t kTagTrackUid = 0x63C5;
constexpr std::uint32_t kSimpleTag = 0x67C8;
constexpr std::uint32_t kTagName = 0x45A3;
constexpr std::uint32_t kTagString = 0x4487;
constexpr std::uint32_t kCluster = 0x1F43B675;
constexpr std::uint32_t kTimestamp = 0xE7;
constexpr std::uint32_t kSimpleBlock = 0xA3;
constexpr std::uint32_t kBlockGroup = 0xA0;
constexpr std::uint32_t kCues = 0x1C53BB6B;
constexpr std::uint32_t kCuePoint = 0xBB;
constexpr std::uint32_t kCueTime = 0xB3;
constexpr std::uint32_t kCueTrackPositions = 0xB7;
constexpr std::uint32_t kCueTrack = 0xF7;
constexpr std::uint32_t kCueClusterPosition = 0xF1;
constexpr std::uint32_t kCueRelativePosition = 0xF0;
constexpr std::uint32_t kAttachments = 0x1941A469;
constexpr std::uint32_t kAttachedFile = 0x61A7;
constexpr std::uint32_t kFileName = 0x466E;
constexpr std::uint32_t kFileMediaType = 0x4660;
constexpr std::uint32_t kFileData = 0x465C;
constexpr std::uint32_t kFileUid = 0x46AE;
constexpr std::uint32_t kChapters = 0x1043A770;
constexpr std::uint32_t kEditionEntry = 0x45B9;
constexpr std::uint32_t kEditionFlagDefault = 0x45DB;
constexpr std::uint32_t kChapterAtom = 0xB6;
constexpr std::uint32_t kChapterUid = 0x73C4;
constexpr std::uint32_t kChapterTimeStart = 0x91;
constexpr std::uint32_t kChapterDisplay = 0x80;
constexpr std::uint32_t kChapString = 0x85;
constexpr std::uint32_t kChapLanguage = 0x437C;

/// Bytes of a header with a four-byte identifier and an eight-byte size.
constexpr std::size_t kLongHeaderSize = 12;
/// Bytes of a Void header with an eight-byte size.
constexpr std::size_t kLongVoidHeaderSize = 9;
/// Bytes of a whole CRC-32 element.
constexpr std::size_t kCrcElementSize = 6;

// --- Reading ---------------------------------------------------------------------------------------------------------

struct Element {
    std::uint32_t id = 0;
    std::uint64_t position = 0;  ///< of the header
    std::uint64_t data = 0;      ///< position of the first byte behind the header
    std::uint64_t size = 0;      ///< of the data; 0 if unknownSize
    bool unknownSize = false;

    std::uint64_t End() const { return data + size; }
};

/// The element whose header begins at `position`; nullopt if there is no well-formed header before `limit`, or the data
/// ends beyond `limit`.
std::optional<Element> ReadElement(IStorage& storage, std::uint64_t position, std::uint64_t limit);
/// The same of bytes that have been read; positions are indices.
std::optional<Element> ReadElement(std::span<const std::uint8_t> bytes, std::uint64_t position, std::uint64_t limit);

/// Calls `visit` for each child between `begin` and `end`, until it returns false. False if the children do not fill
/// the room exactly or one has an unknown size; visited ones were well-formed.
template <class Source, class Visit>
bool ForEachChild(Source&& source, std::uint64_t begin, std::uint64_t end, const Visit& visit) {
    while (begin < end) {
        const std::optional<Element> child = ReadElement(source, begin, end);
        if (!child || child->unknownSize) return false;
        if (!visit(*child)) return true;
        begin = child->End();
    }
    return begin == end;
}

/// Values of leaf elements; an element that is too long for its kind gives 0 or an empty text.
std::uint64_t ReadUnsigned(IStorage& storage, const Element& element);
std::uint64_t ReadUnsigned(std::span<const std::uint8_t> bytes, const Element& element);
double ReadFloat(IStorage& storage, const Element& element);
std::string ReadText(IStorage& storage, const Element& element, std::size_t maximum);
Bytes ReadBinary(IStorage& storage, const Element& element, std::size_t maximum);

enum class CrcState { kRight, kWrong, kAbsent };
/// What the CRC-32 at the beginning of a master element says.
CrcState CheckCrc(IStorage& storage, const Element& master);

// --- Writing ---------------------------------------------------------------------------------------------------------

void AppendId(Bytes& target, std::uint32_t id);
/// The shortest form that can hold `size`.
void AppendSize(Bytes& target, std::uint64_t size);
/// The eight-byte form; `kUnknownSize` for a size that is not known yet.
void AppendLongSize(Bytes& target, std::uint64_t size);
constexpr std::uint64_t kUnknownSize = 0x00FFFFFFFFFFFFFF;

void AppendUnsigned(Bytes& target, std::uint32_t id, std::uint64_t value);
/// Always eight bytes of data.
void AppendLongUnsigned(Bytes& target, std::uint32_t id, std::uint64_t value);
/// Always eight bytes of data.
void AppendFloat(Bytes& target, std::uint32_t id, double value);
void AppendText(Bytes& target, std::uint32_t id, std::string_view value);
void AppendBinary(Bytes& target, std::uint32_t id, std::span<const std::uint8_t> value);
/// A Void of exactly `totalSize` bytes, header included; at least 2.
void AppendVoid(Bytes& target, std::uint64_t totalSize);
/// A Void header of kLongVoidHeaderSize bytes that covers `totalSize` bytes, its own included.
Bytes LongVoidHeader(std::uint64_t totalSize);
/// A master with a long header whose first child is the CRC-32 of `children`.
void AppendCheckedMaster(Bytes& target, std::uint32_t id, std::span<const std::uint8_t> children);
/// The CRC-32 element for a checksum of zlib's crc32.
void AppendCrc(Bytes& target, std::uint32_t checksum);

}  // namespace kestrum::media::ebml
