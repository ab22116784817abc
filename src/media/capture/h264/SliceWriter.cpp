#include "media/capture/h264/SliceWriter.h"

#include <algorithm>

#include "media/capture/h264/Cavlc.h"

namespace kestrum::media::h264 {
namespace {

constexpr int kMiddleParameter = 26;  ///< the picture set's; slices tell the difference from it
constexpr std::uint32_t kAllP = 5;    ///< slice type: P, as all slices of the picture
constexpr std::uint32_t kIntraInP = 5;
constexpr int kQuarters = 4;  ///< vectors are written in quarters of a sample

// Numbers of the coded patterns of macroblocks that are not intra (table 9-4), by pattern.
constexpr std::array<std::uint8_t, 48> kPatternCodes = [] {
    constexpr std::array<std::uint8_t, 48> patterns = {0,  16, 1,  2,  4,  8,  32, 3,  5,  10, 12, 15, 47, 7,  11, 13,
                                                       14, 6,  9,  31, 35, 37, 42, 44, 33, 34, 36, 40, 39, 43, 45, 46,
                                                       17, 18, 20, 24, 19, 21, 26, 28, 23, 27, 29, 30, 22, 25, 38, 41};
    std::array<std::uint8_t, 48> codes{};
    for (std::size_t code = 0; code < patterns.size(); ++code) codes[patterns[code]] = static_cast<std::uint8_t>(code);
    return codes;
}();

// Blocks in the order in which they are written: by quarters, and in a quarter by lines.
constexpr std::array<std::uint8_t, 16> kBlockOrder = {0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 12, 13, 10, 11, 14, 15};

int Median(int a, int b, int c) {
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

int Expected(const std::uint8_t* left, const std::uint8_t* above) {
    if (left && above) return (*left + *above + 1) / 2;
    if (left) return *left;
    return above ? *above : 0;
}

std::span<const std::int16_t> WithoutDc(const Levels& levels) {
    return std::span(levels).subspan(1);
}

}  // namespace

std::vector<std::uint8_t> PictureSetPayload(const SequenceSet& sequence) {
    BitWriter bits;
    bits.Unsigned(kPictureSetId);
    bits.Unsigned(sequence.id);
    bits.Flag(false);  // variable-length codes
    bits.Flag(false);  // no order in slices
    bits.Unsigned(0);  // one group of slices
    bits.Unsigned(0);  // one reference
    bits.Unsigned(0);  // and one backwards
    bits.Flag(false);  // no weights
    bits.Bits(0, 2);   // nor backwards
    bits.Signed(0);    // quantiser: kMiddleParameter
    bits.Signed(0);    // of switching slices
    bits.Signed(0);    // offset of chroma
    bits.Flag(true);   // slices tell of deblocking
    bits.Flag(false);  // intra may look at others
    bits.Flag(false);  // no redundant pictures
    bits.Finish();
    return {bits.Bytes().begin(), bits.Bytes().end()};
}

SliceWriter::SliceWriter(int columns, int rows)
    : m_columns(columns), m_traces(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

void SliceWriter::Begin(const SequenceSet& sequence, std::uint32_t frameNumber, int parameter) {
    constexpr std::uint32_t kNoDeblocking = 1;
    m_column = m_row = 0;
    m_index = 0;
    m_skipped = 0;
    m_parameter = parameter;
    std::fill(m_traces.begin(), m_traces.end(), Trace{});
    m_bits.Clear();
    m_bits.Unsigned(0);  // first macroblock
    m_bits.Unsigned(kAllP);
    m_bits.Unsigned(kPictureSetId);
    m_bits.Bits(frameNumber, sequence.frameNumberBits);
    m_bits.Flag(false);  // the set's number of references
    m_bits.Flag(false);  // in their order
    m_bits.Flag(false);  // the oldest goes
    m_bits.Signed(parameter - kMiddleParameter);
    m_bits.Unsigned(kNoDeblocking);
}

const SliceWriter::Trace* SliceWriter::AboveOnTheOtherSide() const {
    const Trace* above = Above();
    if (!above) return nullptr;
    if (m_column + 1 < m_columns) return above + 1;
    return m_column > 0 ? above - 1 : nullptr;
}

Vector SliceWriter::PredictedVector() const {
    const std::array<const Trace*, 3> around = {Left(), Above(), AboveOnTheOtherSide()};
    if (around[0] && !around[1] && !around[2]) return around[0]->vector;
    std::array<Vector, 3> vectors;
    int moving = 0;
    Vector last;
    for (std::size_t i = 0; i < around.size(); ++i) {
        if (!around[i]) continue;
        vectors[i] = around[i]->vector;
        if (around[i]->kind == Kind::kIntra) continue;
        ++moving;
        last = vectors[i];
    }
    if (moving == 1) return last;
    return {Median(vectors[0].x, vectors[1].x, vectors[2].x), Median(vectors[0].y, vectors[1].y, vectors[2].y)};
}

std::array<Vector, 2> SliceWriter::NeighbourVectors() const {
    return {Left() ? Left()->vector : Vector{}, Above() ? Above()->vector : Vector{}};
}

// What a macroblock of which nothing is written takes: nothing moves if a neighbour rests.
Vector SliceWriter::SkippedVector() const {
    const auto rests = [](const Trace* trace) {
        return !trace || (trace->kind != Kind::kIntra && trace->vector == Vector{});
    };
    return rests(Left()) || rests(Above()) ? Vector{} : PredictedVector();
}

int SliceWriter::ExpectedLuma(std::size_t block) const {
    const Trace& own = m_traces[m_index];
    const std::uint8_t* left = block % 4 > 0 ? &own.luma[block - 1] : Left() ? &Left()->luma[block + 3] : nullptr;
    const std::uint8_t* above = block >= 4 ? &own.luma[block - 4] : Above() ? &Above()->luma[block + 12] : nullptr;
    return Expected(left, above);
}

int SliceWriter::ExpectedChroma(std::size_t plane, std::size_t block) const {
    const auto& own = m_traces[m_index].chroma[plane];
    const std::uint8_t* left = block % 2 > 0 ? &own[block - 1] : Left() ? &Left()->chroma[plane][block + 1] : nullptr;
    const std::uint8_t* above = block >= 2 ? &own[block - 2] : Above() ? &Above()->chroma[plane][block + 2] : nullptr;
    return Expected(left, above);
}

void SliceWriter::WriteUnchanged() {
    Macroblock resting;
    Write(resting, m_parameter);
}

void SliceWriter::Write(const Macroblock& macroblock, int parameter) {
    Trace& own = m_traces[m_index];
    own.vector = macroblock.vector;
    if (!macroblock.isIntra && !macroblock.HasLevels() && macroblock.vector == SkippedVector()) {
        ++m_skipped;
        return Next();
    }
    own.kind = macroblock.isIntra ? Kind::kIntra : Kind::kInter;
    WriteSkips();
    if (macroblock.isIntra) {
        own.vector = {};
        WriteIntraHead(macroblock);
    } else {
        WriteInterHead(macroblock);
    }
    if (macroblock.isIntra || macroblock.HasLevels()) WriteParameter(parameter);
    WriteLuma(macroblock);
    WriteChroma(macroblock);
    Next();
}

void SliceWriter::WriteSkips() {
    m_bits.Unsigned(m_skipped);
    m_skipped = 0;
}

void SliceWriter::WriteInterHead(const Macroblock& macroblock) {
    const Vector expected = PredictedVector();
    m_bits.Unsigned(0);  // one vector for all of it
    m_bits.Signed((macroblock.vector.x - expected.x) * kQuarters);
    m_bits.Signed((macroblock.vector.y - expected.y) * kQuarters);
    m_bits.Unsigned(kPatternCodes[macroblock.lumaPattern + 16 * macroblock.chromaPattern]);
}

void SliceWriter::WriteIntraHead(const Macroblock& macroblock) {
    const std::uint32_t type = 1 + static_cast<std::uint32_t>(macroblock.lumaMode) + 4 * macroblock.chromaPattern +
                               (macroblock.lumaPattern != 0 ? 12 : 0);
    m_bits.Unsigned(kIntraInP + type);
    m_bits.Unsigned(static_cast<std::uint32_t>(macroblock.chromaMode));
}

void SliceWriter::WriteParameter(int parameter) {
    m_bits.Signed(parameter - m_parameter);
    m_parameter = parameter;
}

void SliceWriter::WriteLuma(const Macroblock& macroblock) {
    if (macroblock.isIntra) WriteLevels(m_bits, macroblock.lumaDc, ExpectedLuma(0));
    for (std::size_t i = 0; i < kBlockOrder.size(); ++i) {
        if ((macroblock.lumaPattern >> (i / 4) & 1U) == 0) continue;
        const std::size_t block = kBlockOrder[i];
        const Levels& levels = macroblock.luma[block];
        const int count = macroblock.isIntra ? WriteLevels(m_bits, WithoutDc(levels), ExpectedLuma(block))
                                             : WriteLevels(m_bits, levels, ExpectedLuma(block));
        m_traces[m_index].luma[block] = static_cast<std::uint8_t>(count);
    }
}

void SliceWriter::WriteChroma(const Macroblock& macroblock) {
    if (macroblock.chromaPattern == 0) return;
    for (const ChromaDcLevels& levels : macroblock.chromaDc) WriteLevels(m_bits, levels, kChromaDc);
    if (macroblock.chromaPattern < 2) return;
    for (std::size_t plane = 0; plane < 2; ++plane) {
        for (std::size_t block = 0; block < 4; ++block) {
            const int count =
                WriteLevels(m_bits, WithoutDc(macroblock.chromaAc[plane][block]), ExpectedChroma(plane, block));
            m_traces[m_index].chroma[plane][block] = static_cast<std::uint8_t>(count);
        }
    }
}

void SliceWriter::Next() {
    ++m_index;
    if (++m_column < m_columns) return;
    m_column = 0;
    ++m_row;
}

std::span<const std::uint8_t> SliceWriter::End() {
    if (m_skipped > 0) WriteSkips();
    m_bits.Finish();
    return m_bits.Bytes();
}

}  // namespace kestrum::media::h264
