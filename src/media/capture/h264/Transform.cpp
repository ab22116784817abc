#include "media/capture/h264/Transform.h"

#include <algorithm>
#include <cstdlib>

namespace kestrum::media::h264 {
namespace {

constexpr std::array<std::uint8_t, 16> kScan = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};

// By the kind of the place: both coordinates even, both odd, mixed. The transform's rows differ in length, which these
// numbers even out; the multipliers are 2^15 divided by step and length.
using Kinds = std::array<std::int32_t, 3>;
constexpr std::array<Kinds, 6> kMultipliers = {{{13107, 5243, 8066},
                                                {11916, 4660, 7490},
                                                {10082, 4194, 6554},
                                                {9362, 3647, 5825},
                                                {8192, 3355, 5243},
                                                {7282, 2893, 4559}}};
constexpr std::array<Kinds, 6> kScales = {
    {{10, 16, 13}, {11, 18, 14}, {13, 20, 16}, {14, 23, 18}, {16, 25, 20}, {18, 29, 23}}};
constexpr int kMultiplierBits = 15;

std::size_t KindOf(std::size_t raster) {
    const bool oddColumn = raster % 2 != 0, oddRow = raster / 4 % 2 != 0;
    if (oddColumn != oddRow) return 2;
    return oddColumn ? 1 : 0;
}

// One pass over rows (step 1) or columns (step 4) of a block.
template <class Pass>
void ForLines(Block& block, std::size_t step, Pass pass) {
    const std::size_t next = step == 1 ? 4 : 1;
    for (std::size_t line = 0; line < 4; ++line) {
        const std::size_t at = line * next;
        pass(block[at], block[at + step], block[at + 2 * step], block[at + 3 * step]);
    }
}

using Number = std::int32_t&;

void Hadamard(Block& block) {
    const auto pass = [](Number a, Number b, Number c, Number d) {
        const std::int32_t sum0 = a + d, sum1 = b + c, difference0 = a - d, difference1 = b - c;
        a = sum0 + sum1;
        b = difference0 + difference1;
        c = sum0 - sum1;
        d = difference0 - difference1;
    };
    ForLines(block, 1, pass);
    ForLines(block, 4, pass);
}

ChromaDc Hadamard(const ChromaDc& in) {
    return {in[0] + in[1] + in[2] + in[3], in[0] - in[1] + in[2] - in[3], in[0] + in[1] - in[2] - in[3],
            in[0] - in[1] - in[2] + in[3]};
}

}  // namespace

void ForwardTransform(Block& block) {
    const auto pass = [](Number a, Number b, Number c, Number d) {
        const std::int32_t sum0 = a + d, sum1 = b + c, difference0 = a - d, difference1 = b - c;
        a = sum0 + sum1;
        b = 2 * difference0 + difference1;
        c = sum0 - sum1;
        d = difference0 - 2 * difference1;
    };
    ForLines(block, 1, pass);
    ForLines(block, 4, pass);
}

void InverseTransform(Block& block) {
    const auto pass = [](Number a, Number b, Number c, Number d) {
        const std::int32_t sum0 = a + c, sum1 = a - c, half0 = (b >> 1) - d, half1 = b + (d >> 1);
        a = sum0 + half1;
        b = sum1 + half0;
        c = sum1 - half0;
        d = sum0 - half1;
    };
    ForLines(block, 1, pass);
    ForLines(block, 4, pass);
    for (std::int32_t& number : block) number = (number + 32) >> 6;
}

std::int32_t Quantiser::Level(std::int32_t coefficient, std::int32_t multiplier, Rounding rounding,
                              int halvings) const {
    const int shift = kMultiplierBits + m_doublings + halvings;
    const std::int64_t share = (std::int64_t{1} << shift) / (rounding == Rounding::kIntra ? 3 : 6);
    const auto size = static_cast<std::int32_t>((std::int64_t{std::abs(coefficient)} * multiplier + share) >> shift);
    return coefficient < 0 ? -size : size;
}

bool Quantiser::Quantise(const Block& coefficients, Rounding rounding, std::size_t first, Levels& levels) const {
    const Kinds& multipliers = kMultipliers[static_cast<std::size_t>(m_remainder)];
    std::int32_t any = 0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const std::size_t place = kScan[i];
        const std::int32_t level = i < first ? 0 : Level(coefficients[place], multipliers[KindOf(place)], rounding, 0);
        levels[i] = static_cast<std::int16_t>(level);
        any |= level;
    }
    return any != 0;
}

Block Quantiser::Scale(const Levels& levels, std::size_t first) const {
    const Kinds& scales = kScales[static_cast<std::size_t>(m_remainder)];
    Block block{};
    for (std::size_t i = first; i < levels.size(); ++i) {
        block[kScan[i]] = levels[i] * scales[KindOf(kScan[i])] * (1 << m_doublings);
    }
    return block;
}

bool Quantiser::QuantiseLumaDc(const Block& dc, Levels& levels) const {
    Block sums = dc;
    Hadamard(sums);
    for (std::int32_t& sum : sums) sum /= 2;
    std::int32_t any = 0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const std::int32_t multiplier = kMultipliers[static_cast<std::size_t>(m_remainder)][0];
        const std::int32_t level = Level(sums[kScan[i]], multiplier, Rounding::kIntra, 1);
        levels[i] = static_cast<std::int16_t>(level);
        any |= level;
    }
    return any != 0;
}

Block Quantiser::ScaleLumaDc(const Levels& levels) const {
    Block sums{};
    for (std::size_t i = 0; i < levels.size(); ++i) sums[kScan[i]] = levels[i];
    Hadamard(sums);
    const std::int32_t scale = kScales[static_cast<std::size_t>(m_remainder)][0] * 16;
    for (std::int32_t& sum : sums) {
        sum = m_doublings >= 6 ? sum * scale * (1 << (m_doublings - 6))
                               : (sum * scale + (1 << (5 - m_doublings))) >> (6 - m_doublings);
    }
    return sums;
}

bool Quantiser::QuantiseChromaDc(const ChromaDc& dc, Rounding rounding, ChromaDcLevels& levels) const {
    const ChromaDc sums = Hadamard(dc);
    std::int32_t any = 0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const std::int32_t multiplier = kMultipliers[static_cast<std::size_t>(m_remainder)][0];
        const std::int32_t level = Level(sums[i], multiplier, rounding, 1);
        levels[i] = static_cast<std::int16_t>(level);
        any |= level;
    }
    return any != 0;
}

ChromaDc Quantiser::ScaleChromaDc(const ChromaDcLevels& levels) const {
    ChromaDc sums = Hadamard(ChromaDc{levels[0], levels[1], levels[2], levels[3]});
    const std::int32_t scale = kScales[static_cast<std::size_t>(m_remainder)][0] * 16;
    for (std::int32_t& sum : sums) sum = (sum * scale * (1 << m_doublings)) >> 5;
    return sums;
}

int ChromaParameter(int luma) {
    constexpr std::array<int, 22> kAbove29 = {29, 30, 31, 32, 32, 33, 34, 34, 35, 35, 36,
                                              36, 37, 37, 37, 38, 38, 38, 39, 39, 39, 39};
    return luma < 30 ? luma : kAbove29[static_cast<std::size_t>(std::min(luma, 51) - 30)];
}

}  // namespace kestrum::media::h264
