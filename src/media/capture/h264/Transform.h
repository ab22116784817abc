// From what prediction left of 4x4 samples to levels, and back exactly as every decoder does it (clause 8.5).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrum::media::h264 {

/// Sixteen numbers of a 4x4 block in raster order: differences, or coefficients.
using Block = std::array<std::int32_t, 16>;
/// Levels in the order in which they are written (zigzag); a chroma DC block has four.
using Levels = std::array<std::int16_t, 16>;
using ChromaDc = std::array<std::int32_t, 4>;
using ChromaDcLevels = std::array<std::int16_t, 4>;

/// Which share of a step is rounded up: less where the picture before predicts, so that noise costs nothing.
enum class Rounding { kInter, kIntra };

void ForwardTransform(Block& block);
/// Ends with the division by 64.
void InverseTransform(Block& block);

class Quantiser {
  public:
    /// `parameter`: 12 (fine) to 51 (coarse); below 12 a level could be too big to be written.
    explicit Quantiser(int parameter) : m_remainder(parameter % 6), m_doublings(parameter / 6) {}

    /// Levels of coefficients from place `first` of the scan on; 0 before. True if any of them is not 0.
    bool Quantise(const Block& coefficients, Rounding rounding, std::size_t first, Levels& levels) const;
    /// Coefficients as a decoder scales them; adds to nothing: places before `first` are 0.
    Block Scale(const Levels& levels, std::size_t first) const;

    /// The DC coefficients of the sixteen blocks of a macroblock predicted as a whole, raster order of the blocks.
    bool QuantiseLumaDc(const Block& dc, Levels& levels) const;
    Block ScaleLumaDc(const Levels& levels) const;
    /// The DC coefficients of the four blocks of a chroma plane.
    bool QuantiseChromaDc(const ChromaDc& dc, Rounding rounding, ChromaDcLevels& levels) const;
    ChromaDc ScaleChromaDc(const ChromaDcLevels& levels) const;

  private:
    std::int32_t Level(std::int32_t coefficient, std::int32_t multiplier, Rounding rounding, int halvings) const;

    int m_remainder;
    int m_doublings;  ///< of the step against that of the remainder
};

/// The parameter of chroma that goes with one of luma (table 8-15, no offset).
int ChromaParameter(int luma);

}  // namespace kestrum::media::h264
