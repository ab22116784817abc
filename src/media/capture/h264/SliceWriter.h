// The bits of a P picture: macroblocks in raster order, each told by what differs from what its neighbours let expect.
#pragma once

#include <optional>
#include <vector>

#include "media/capture/h264/BitWriter.h"
#include "media/capture/h264/Macroblock.h"
#include "media/capture/h264/SequenceSet.h"

namespace kestrum::media::h264 {

/// Number of the picture parameter set that these pictures refer to; 0 is the general encoder's.
constexpr std::uint32_t kPictureSetId = 1;

/// The payload of that set, for pictures of the sequence set.
std::vector<std::uint8_t> PictureSetPayload(const SequenceSet& sequence);

class SliceWriter {
  public:
    /// Size in macroblocks.
    SliceWriter(int columns, int rows);

    /// Begins a picture that refers to the one before. `frameNumber` counts pictures since the last key frame;
    /// `parameter` is the quantiser's until a macroblock brings another.
    void Begin(const SequenceSet& sequence, std::uint32_t frameNumber, int parameter);
    /// The vector that the neighbours let expect for the macroblock whose turn it is.
    Vector PredictedVector() const;
    /// Vectors of the neighbours on the left and above, for a search.
    std::array<Vector, 2> NeighbourVectors() const;
    /// The macroblock is as in the picture before, at the same place.
    void WriteUnchanged();
    void Write(const Macroblock& macroblock, int parameter);
    /// Ends the picture after its last macroblock and gives its payload, valid until the next Begin.
    std::span<const std::uint8_t> End();

  private:
    enum class Kind : std::uint8_t { kSkipped, kInter, kIntra };
    /// What later macroblocks look back at.
    struct Trace {
        Kind kind = Kind::kSkipped;
        Vector vector;
        std::array<std::uint8_t, 16> luma{};  ///< numbers of coefficients, raster order
        std::array<std::array<std::uint8_t, 4>, 2> chroma{};
    };

    const Trace* Left() const { return m_column > 0 ? &m_traces[m_index - 1] : nullptr; }
    const Trace* Above() const {
        return m_row > 0 ? &m_traces[m_index - static_cast<std::size_t>(m_columns)] : nullptr;
    }
    const Trace* AboveOnTheOtherSide() const;
    Vector SkippedVector() const;
    int ExpectedLuma(std::size_t block) const;
    int ExpectedChroma(std::size_t plane, std::size_t block) const;
    void WriteSkips();
    void WriteInterHead(const Macroblock& macroblock);
    void WriteIntraHead(const Macroblock& macroblock);
    void WriteParameter(int parameter);
    void WriteLuma(const Macroblock& macroblock);
    void WriteChroma(const Macroblock& macroblock);
    void Next();

    int m_columns;
    int m_column = 0;
    int m_row = 0;
    std::size_t m_index = 0;
    std::uint32_t m_skipped = 0;
    int m_parameter = 0;
    std::vector<Trace> m_traces;
    BitWriter m_bits;
};

}  // namespace kestrum::media::h264
