#include "media/package/Ebml.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace kestrum::media::ebml {

namespace {

constexpr std::size_t kLongestHeader = 12;

/// Number of bytes of a variable-length number by its first byte; 9 if there is no length marker.
std::size_t WidthOf(std::uint8_t first) {
    return static_cast<std::size_t>(std::countl_zero(first)) + 1;
}

std::uint64_t BigEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) value = (value << 8) | byte;
    return value;
}

void AppendBigEndian(Bytes& target, std::uint64_t value, std::size_t width) {
    for (std::size_t i = width; i-- > 0;) target.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::optional<Element> ParseHeader(std::span<const std::uint8_t> raw, std::uint64_t position, std::uint64_t limit) {
    if (raw.size() < 2) return std::nullopt;
    const std::size_t idWidth = WidthOf(raw[0]);
    if (idWidth > 4 || idWidth >= raw.size()) return std::nullopt;
    const std::size_t sizeWidth = WidthOf(raw[idWidth]);
    if (sizeWidth > 8 || idWidth + sizeWidth > raw.size()) return std::nullopt;

    Element element;
    element.id = static_cast<std::uint32_t>(BigEndian(raw.first(idWidth)));
    element.position = position;
    element.data = position + idWidth + sizeWidth;
    const std::uint64_t mask = (std::uint64_t{1} << (7 * sizeWidth)) - 1;
    const std::uint64_t size = BigEndian(raw.subspan(idWidth, sizeWidth)) & mask;
    element.unknownSize = size == mask;
    if (element.unknownSize) return element;
    if (size > limit - element.data) return std::nullopt;
    element.size = size;
    return element;
}

std::uint32_t CrcOf(IStorage& storage, std::uint64_t begin, std::uint64_t end) {
    Bytes buffer(std::min<std::uint64_t>(end - begin, 1 << 20));
    uLong checksum = crc32(0, nullptr, 0);
    while (begin < end) {
        const std::span<std::uint8_t> part(buffer.data(), std::min<std::uint64_t>(buffer.size(), end - begin));
        if (storage.ReadAt(begin, part) != part.size()) return 0;
        checksum = crc32(checksum, part.data(), static_cast<uInt>(part.size()));
        begin += part.size();
    }
    return static_cast<std::uint32_t>(checksum);
}

/// An identifier and a size of one byte each: most of a long list's elements.
bool IsShortHeader(std::uint8_t first, std::uint8_t second) {
    return first >= 0x80 && first != 0xFF && second >= 0x80 && second != 0xFF;
}

}  // namespace

std::optional<Element> ReadElement(IStorage& storage, std::uint64_t position, std::uint64_t limit) {
    std::array<std::uint8_t, kLongestHeader> raw{};
    if (position >= limit) return std::nullopt;
    const std::size_t wanted = std::min<std::uint64_t>(raw.size(), limit - position);
    const std::size_t got = storage.ReadAt(position, std::span(raw).first(wanted));
    return ParseHeader(std::span(raw).first(got), position, limit);
}

std::optional<Element> ReadElement(std::span<const std::uint8_t> bytes, std::uint64_t position, std::uint64_t limit) {
    limit = std::min<std::uint64_t>(limit, bytes.size());
    if (position >= limit) return std::nullopt;
    const std::size_t wanted = std::min<std::uint64_t>(kLongestHeader, limit - position);
    if (wanted >= 2 && IsShortHeader(bytes[position], bytes[position + 1])) {
        const Element element{bytes[position], position, position + 2, bytes[position + 1] & 0x7FU};
        return element.End() <= limit ? std::optional(element) : std::nullopt;
    }
    return ParseHeader(bytes.subspan(position, wanted), position, limit);
}

std::uint64_t ReadUnsigned(IStorage& storage, const Element& element) {
    std::array<std::uint8_t, 8> raw{};
    if (element.size > raw.size()) return 0;
    const auto bytes = std::span(raw).first(element.size);
    return storage.ReadAt(element.data, bytes) == bytes.size() ? BigEndian(bytes) : 0;
}

std::uint64_t ReadUnsigned(std::span<const std::uint8_t> bytes, const Element& element) {
    if (element.size > sizeof(std::uint64_t) || element.End() > bytes.size()) return 0;
    return BigEndian(bytes.subspan(element.data, element.size));
}

double ReadFloat(IStorage& storage, const Element& element) {
    if (element.size == 8) return std::bit_cast<double>(ReadUnsigned(storage, element));
    if (element.size == 4)
        return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(ReadUnsigned(storage, element))));
    return 0;
}

Bytes ReadBinary(IStorage& storage, const Element& element, std::size_t maximum) {
    if (element.size > maximum) return {};
    return ReadExactly(storage, element.data, element.size).value_or(Bytes());
}

std::string ReadText(IStorage& storage, const Element& element, std::size_t maximum) {
    const Bytes bytes = ReadBinary(storage, element, maximum);
    return std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), std::uint8_t{0}));
}

CrcState CheckCrc(IStorage& storage, const Element& master) {
    if (master.unknownSize || master.size < kCrcElementSize) return CrcState::kAbsent;
    std::array<std::uint8_t, kCrcElementSize> raw{};
    if (storage.ReadAt(master.data, raw) != raw.size()) return CrcState::kAbsent;
    if (raw[0] != kCrc32 || raw[1] != 0x84) return CrcState::kAbsent;
    std::uint32_t stored = 0;
    for (std::size_t i = 0; i < 4; ++i) stored |= static_cast<std::uint32_t>(raw[2 + i]) << (8 * i);
    const bool right = stored == CrcOf(storage, master.data + kCrcElementSize, master.End());
    return right ? CrcState::kRight : CrcState::kWrong;
}

void AppendId(Bytes& target, std::uint32_t id) {
    const std::size_t width = id > 0xFFFFFF ? 4 : id > 0xFFFF ? 3 : id > 0xFF ? 2 : 1;
    AppendBigEndian(target, id, width);
}

void AppendSize(Bytes& target, std::uint64_t size) {
    std::size_t width = 1;
    // The value with all bits set means "unknown" and is not used for a size.
    while (width < 8 && size >= (std::uint64_t{1} << (7 * width)) - 1) ++width;
    AppendBigEndian(target, size | (std::uint64_t{1} << (7 * width)), width);
}

void AppendLongSize(Bytes& target, std::uint64_t size) {
    AppendBigEndian(target, size | (std::uint64_t{1} << 56), 8);
}

void AppendUnsigned(Bytes& target, std::uint32_t id, std::uint64_t value) {
    std::size_t width = 1;
    while (width < 8 && (value >> (8 * width)) != 0) ++width;
    AppendId(target, id);
    AppendSize(target, width);
    AppendBigEndian(target, value, width);
}

void AppendLongUnsigned(Bytes& target, std::uint32_t id, std::uint64_t value) {
    AppendId(target, id);
    AppendSize(target, 8);
    AppendBigEndian(target, value, 8);
}

void AppendFloat(Bytes& target, std::uint32_t id, double value) {
    AppendLongUnsigned(target, id, std::bit_cast<std::uint64_t>(value));
}

void AppendText(Bytes& target, std::uint32_t id, std::string_view value) {
    AppendId(target, id);
    AppendSize(target, value.size());
    target.insert(target.end(), value.begin(), value.end());
}

void AppendBinary(Bytes& target, std::uint32_t id, std::span<const std::uint8_t> value) {
    AppendId(target, id);
    AppendSize(target, value.size());
    target.insert(target.end(), value.begin(), value.end());
}

void AppendVoid(Bytes& target, std::uint64_t totalSize) {
    constexpr std::uint64_t kLargestShort = 2 + 126;
    const std::size_t end = target.size() + totalSize;
    if (totalSize <= kLargestShort) {
        AppendId(target, kVoid);
        AppendSize(target, totalSize - 2);
    } else {
        const Bytes header = LongVoidHeader(totalSize);
        target.insert(target.end(), header.begin(), header.end());
    }
    target.resize(end);
}

Bytes LongVoidHeader(std::uint64_t totalSize) {
    Bytes header;
    AppendId(header, kVoid);
    AppendLongSize(header, totalSize - kLongVoidHeaderSize);
    return header;
}

void AppendCheckedMaster(Bytes& target, std::uint32_t id, std::span<const std::uint8_t> children) {
    AppendId(target, id);
    AppendLongSize(target, children.size() + kCrcElementSize);
    AppendCrc(target, static_cast<std::uint32_t>(
                          crc32_z(crc32(0, nullptr, 0), children.data(), static_cast<z_size_t>(children.size()))));
    target.insert(target.end(), children.begin(), children.end());
}

void AppendCrc(Bytes& target, std::uint32_t checksum) {
    AppendId(target, kCrc32);
    AppendSize(target, 4);
    for (std::size_t i = 0; i < 4; ++i) target.push_back(static_cast<std::uint8_t>(checksum >> (8 * i)));
}

}  // namespace kestrum::media::ebml
