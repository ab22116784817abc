#include "media/capture/h264/SequenceSet.h"

#include <algorithm>
#include <array>
#include <vector>

#include "media/capture/h264/NalUnit.h"

namespace kestrum::media::h264 {
namespace {

constexpr int kSequenceSetType = 7;
constexpr std::uint32_t kOrderByDecoding = 2;
// Profiles whose set tells the format of the samples (clause 7.3.2.1.1).
constexpr std::array<std::uint32_t, 4> kHighProfiles = {100, 110, 122, 244};

class BitReader {
  public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    std::uint32_t Bits(int count) {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i, ++m_position) value = (value << 1) | Next();
        return value;
    }
    std::uint32_t Unsigned() {
        int zeros = 0;
        while (zeros < 32 && !IsPastEnd() && Bits(1) == 0) ++zeros;
        if (zeros == 0 || zeros == 32) return 0;
        return (std::uint32_t{1} << zeros) - 1 + Bits(zeros);
    }
    bool IsPastEnd() const { return m_position > m_bytes.size() * 8; }

  private:
    std::uint32_t Next() const {
        const std::size_t byte = m_position / 8;
        return byte < m_bytes.size() ? (m_bytes[byte] >> (7 - m_position % 8)) & 1U : 0;
    }

    std::span<const std::uint8_t> m_bytes;
    std::size_t m_position = 0;
};

// True if the samples are 4:2:0 with 8 bits and no scaling lists.
bool ReadPlainFormat(BitReader& bits) {
    constexpr std::uint32_t k420 = 1;
    const bool is420 = bits.Unsigned() == k420;
    const bool is8Bit = bits.Unsigned() == 0 && bits.Unsigned() == 0;
    const bool isLossless = bits.Bits(1) == 1;
    const bool hasLists = bits.Bits(1) == 1;
    return is420 && is8Bit && !isLossless && !hasLists;
}

}  // namespace

std::optional<SequenceSet> ReadSequenceSet(std::span<const std::uint8_t> unit) {
    if (unit.empty() || (unit[0] & 0x1F) != kSequenceSetType) return std::nullopt;
    const std::vector<std::uint8_t> payload = PayloadOf(unit.subspan(1));
    BitReader bits(payload);
    const std::uint32_t profile = bits.Bits(8);
    bits.Bits(16);  // constraints, level
    SequenceSet set;
    set.id = bits.Unsigned();
    const bool isHigh = std::find(kHighProfiles.begin(), kHighProfiles.end(), profile) != kHighProfiles.end();
    if (isHigh && !ReadPlainFormat(bits)) return std::nullopt;
    set.frameNumberBits = static_cast<int>(bits.Unsigned()) + 4;
    if (bits.Unsigned() != kOrderByDecoding) return std::nullopt;
    bits.Unsigned();  // reference frames
    bits.Bits(1);     // gaps allowed
    bits.Unsigned();  // width
    bits.Unsigned();  // height
    const bool isFramesOnly = bits.Bits(1) == 1;
    if (!isFramesOnly || bits.IsPastEnd()) return std::nullopt;
    return set;
}

}  // namespace kestrum::media::h264
