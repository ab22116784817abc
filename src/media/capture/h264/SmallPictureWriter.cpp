#include "media/capture/h264/SmallPictureWriter.h"

#include <algorithm>

#include "media/capture/h264/MotionSearch.h"
#include "media/capture/h264/NalUnit.h"

namespace kestrum::media::h264 {
namespace {

// What moves is coded about as finely as the general encoder codes it; what rests afterwards is made finer once.
constexpr int kMovingParameter = 23;
constexpr int kRestingParameter = 16;
// How many differences of samples a bit is worth at kMovingParameter: 2^((23 - 12) / 6).
constexpr int kCostOfBit = 4;
// Bits that a macroblock predicted from inside costs more than one that moves.
constexpr int kIntraBits = 12;

constexpr std::uint8_t kReferencePicture = 0x41;  ///< importance 2, a slice of a picture that is no key frame
constexpr std::uint8_t kPictureSet = 0x68;        ///< importance 3, a picture parameter set

int BlocksIn(int samples) {
    return (samples + kBlock - 1) / kBlock;
}

// The samples of the picture that lie in a square; beyond the picture's edge the square keeps what it has.
void TakeInside(const std::vector<std::uint8_t>& plane, int stride, Area square, const Area& inside, std::uint8_t* to) {
    const Area part = Intersect(square, inside);
    for (int y = part.y; y < part.Bottom(); ++y) {
        const auto* from = plane.data() + static_cast<std::ptrdiff_t>(y) * stride + part.x;
        std::memcpy(to + static_cast<std::ptrdiff_t>(y - square.y) * square.width, from,
                    static_cast<std::size_t>(part.width));
    }
}

}  // namespace

SmallPictureWriter::SmallPictureWriter(const SequenceSet& sequence, int width, int height)
    : m_sequence(sequence),
      m_width(width),
      m_height(height),
      m_reference(BlocksIn(width), BlocksIn(height)),
      m_current(m_reference),
      m_slice(m_reference.columns, m_reference.rows),
      m_isCoarse(static_cast<std::size_t>(m_reference.columns) * static_cast<std::size_t>(m_reference.rows)) {}

std::vector<std::uint8_t> SmallPictureWriter::PictureSet() const {
    std::vector<std::uint8_t> unit;
    AppendUnit(unit, kPictureSet, PictureSetPayload(m_sequence));
    return unit;
}

void SmallPictureWriter::TakeOver(const DecodedPicture& decoded, std::uint32_t frameNumber) {
    Plane& luma = m_reference.luma;
    for (int y = 0; y < luma.height; ++y) {
        std::memcpy(luma.At(0, y), decoded.luma + y * decoded.lumaStride, static_cast<std::size_t>(luma.width));
    }
    for (int y = 0; y < luma.height / 2; ++y) {
        const std::uint8_t* pairs = decoded.chroma + y * decoded.chromaStride;
        std::uint8_t* cb = m_reference.chroma[0].At(0, y);
        std::uint8_t* cr = m_reference.chroma[1].At(0, y);
        for (int x = 0; x < luma.width / 2; ++x) {
            cb[x] = pairs[2 * x];
            cr[x] = pairs[2 * x + 1];
        }
    }
    m_current = m_reference;
    m_frameNumber = frameNumber;
    m_lastVector = {};
    std::fill(m_isCoarse.begin(), m_isCoarse.end(), std::uint8_t{0});
}

std::size_t SmallPictureWriter::IndexOf(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_reference.columns) +
           static_cast<std::size_t>(column);
}

std::span<const std::uint8_t> SmallPictureWriter::Write(const I420Picture& picture, const ChangeMap& changes) {
    const bool refines = changes.Count() == 0;
    std::vector<std::pair<int, int>> coded;
    m_slice.Begin(m_sequence, m_frameNumber++, kMovingParameter);
    for (int row = 0; row < m_reference.rows; ++row) {
        for (int column = 0; column < m_reference.columns; ++column) {
            const bool isCoded = refines ? m_isCoarse[IndexOf(column, row)] != 0 : changes.IsChanged(column, row);
            if (!isCoded) {
                m_slice.WriteUnchanged();
                continue;
            }
            const MacroblockSamples source = Source(picture, column, row);
            refines ? Refine(source, column, row) : Code(source, column, row);
            coded.emplace_back(column, row);
        }
    }
    for (const auto& [column, row] : coded)
        PutMacroblock(TakeMacroblock(m_current, column, row), m_reference, column, row);
    m_sample.clear();
    AppendUnit(m_sample, kReferencePicture, m_slice.End());
    return m_sample;
}

MacroblockSamples SmallPictureWriter::Source(const I420Picture& picture, int column, int row) const {
    MacroblockSamples samples = TakeMacroblock(m_current, column, row);
    TakeInside(picture.luma, picture.lumaStride, {column * 16, row * 16, 16, 16}, {0, 0, m_width, m_height},
               samples.luma.data());
    const Area square{column * 8, row * 8, 8, 8}, inside{0, 0, m_width / 2, m_height / 2};
    TakeInside(picture.cb, picture.chromaStride, square, inside, samples.chroma[0].data());
    TakeInside(picture.cr, picture.chromaStride, square, inside, samples.chroma[1].data());
    return samples;
}

void SmallPictureWriter::Code(const MacroblockSamples& source, int column, int row) {
    const std::array<Vector, 2> around = m_slice.NeighbourVectors();
    const Vector expected = m_slice.PredictedVector();
    const std::array<Vector, 4> candidates = {expected, around[0], around[1], m_lastVector};
    const Match match = FindMotion(source, m_reference, column, row, candidates, expected, kCostOfBit);
    const IntraMatch inside = PredictInside(source, m_current, column, row);
    Macroblock macroblock;
    MacroblockSamples samples;
    if (inside.cost + kIntraBits * kCostOfBit < match.cost) {
        macroblock.isIntra = true;
        macroblock.lumaMode = inside.lumaMode;
        macroblock.chromaMode = inside.chromaMode;
        samples = inside.samples;
    } else {
        macroblock.vector = match.vector;
        samples = PredictByMotion(m_reference, column, row, match.vector);
        if (!(match.vector == Vector{})) m_lastVector = match.vector;
    }
    Settle(macroblock, kMovingParameter, source, samples, column, row);
    m_isCoarse[IndexOf(column, row)] = 1;
}

void SmallPictureWriter::Refine(const MacroblockSamples& source, int column, int row) {
    Macroblock macroblock;
    MacroblockSamples samples = TakeMacroblock(m_reference, column, row);
    Settle(macroblock, kRestingParameter, source, samples, column, row);
    m_isCoarse[IndexOf(column, row)] = 0;
}

void SmallPictureWriter::Settle(Macroblock& macroblock, int parameter, const MacroblockSamples& source,
                                MacroblockSamples& samples, int column, int row) {
    CodeResidual(source, parameter, macroblock, samples);
    PutMacroblock(samples, m_current, column, row);
    m_slice.Write(macroblock, parameter);
}

}  // namespace kestrum::media::h264
