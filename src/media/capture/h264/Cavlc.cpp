#include "media/capture/h264/Cavlc.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "media/capture/h264/CavlcTables.h"

namespace kestrum::media::h264 {
namespace {

constexpr int kMostOnes = 3;
constexpr int kLongestSuffix = 6;
constexpr int kEscapePrefix = 15;
constexpr int kEscapeBits = 12;

void Put(BitWriter& bits, Code code) {
    bits.Bits(code.bits, code.length);
}

/// Levels from the last one that is not 0 to the first, and the zeros in front of each.
struct Run {
    std::array<std::int16_t, 16> levels{};
    std::array<std::uint8_t, 16> zerosBefore{};
    int count = 0;
    int ones = 0;  ///< at the front of `levels`, at most three of size 1
    int zeros = 0;
};

Run Collect(std::span<const std::int16_t> levels) {
    Run run;
    for (std::size_t i = levels.size(); i-- > 0;) {
        if (levels[i] != 0) {
            run.levels[static_cast<std::size_t>(run.count++)] = levels[i];
        } else if (run.count > 0) {
            ++run.zerosBefore[static_cast<std::size_t>(run.count - 1)];
            ++run.zeros;
        }
    }
    while (run.ones < std::min(run.count, kMostOnes) && std::abs(run.levels[static_cast<std::size_t>(run.ones)]) == 1) {
        ++run.ones;
    }
    return run;
}

void WriteToken(BitWriter& bits, const Run& run, int expected) {
    const auto count = static_cast<std::size_t>(run.count), ones = static_cast<std::size_t>(run.ones);
    if (expected == kChromaDc) return Put(bits, kChromaDcTokens[count][ones]);
    if (expected < 2) return Put(bits, kCoefficientTokens[0][count][ones]);
    if (expected < 4) return Put(bits, kCoefficientTokens[1][count][ones]);
    if (expected < 8) return Put(bits, kCoefficientTokens[2][count][ones]);
    constexpr std::uint32_t kNone = 3;
    bits.Bits(run.count == 0 ? kNone : static_cast<std::uint32_t>((run.count - 1) * 4 + run.ones), 6);
}

// A prefix of zeros ended by a one, and a suffix of bits.
void WriteLevelCode(BitWriter& bits, int code, int suffixLength) {
    int prefix = code >> suffixLength, suffixBits = suffixLength, suffix = code & ((1 << suffixLength) - 1);
    if (suffixLength == 0 && code >= 14 && code < 30) {
        prefix = 14;
        suffixBits = 4;
        suffix = code - 14;
    } else if (prefix >= kEscapePrefix) {
        prefix = kEscapePrefix;
        suffixBits = kEscapeBits;
        suffix = code - (suffixLength == 0 ? 30 : kEscapePrefix << suffixLength);
    }
    bits.Bits(1, prefix + 1);
    bits.Bits(static_cast<std::uint32_t>(suffix), suffixBits);
}

void WriteLevelValues(BitWriter& bits, const Run& run) {
    for (int i = 0; i < run.ones; ++i) bits.Flag(run.levels[static_cast<std::size_t>(i)] < 0);
    int suffixLength = run.count > 10 && run.ones < kMostOnes ? 1 : 0;
    for (int i = run.ones; i < run.count; ++i) {
        const int level = run.levels[static_cast<std::size_t>(i)];
        int code = 2 * std::abs(level) - (level < 0 ? 1 : 2);
        // With fewer than three trailing ones the next level is no one.
        if (i == run.ones && run.ones < kMostOnes) code -= 2;
        WriteLevelCode(bits, code, suffixLength);
        if (suffixLength == 0) suffixLength = 1;
        if (std::abs(level) > (3 << (suffixLength - 1)) && suffixLength < kLongestSuffix) ++suffixLength;
    }
}

void WriteZeros(BitWriter& bits, const Run& run, std::size_t places, int expected) {
    const auto row = static_cast<std::size_t>(run.count - 1), zeros = static_cast<std::size_t>(run.zeros);
    if (static_cast<std::size_t>(run.count) < places) {
        Put(bits, expected == kChromaDc ? kChromaDcTotalZeros[row][zeros] : kTotalZeros[row][zeros]);
    }
    int left = run.zeros;
    for (int i = 0; i + 1 < run.count && left > 0; ++i) {
        const auto before = run.zerosBefore[static_cast<std::size_t>(i)];
        Put(bits, kRunsBefore[static_cast<std::size_t>(std::min(left, 7) - 1)][before]);
        left -= before;
    }
}

}  // namespace

int WriteLevels(BitWriter& bits, std::span<const std::int16_t> levels, int expected) {
    const Run run = Collect(levels);
    WriteToken(bits, run, expected);
    if (run.count == 0) return 0;
    WriteLevelValues(bits, run);
    WriteZeros(bits, run, levels.size(), expected);
    return run.count;
}

}  // namespace kestrum::media::h264
