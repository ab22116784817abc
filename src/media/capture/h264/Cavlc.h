// The code of one block of levels (clause 9.2 of Rec. ITU-T H.264): how many there are, the trailing ones, the other
// levels from the last to the first, and the zeros between them.
#pragma once

#include <cstdint>
#include <span>

#include "media/capture/h264/BitWriter.h"

namespace kestrum::media::h264 {

/// What is expected of a chroma DC block in place of a count of neighbours.
constexpr int kChromaDc = -1;

/// Writes up to 16 levels in scan order (4 for chroma DC); `expected` is the number of coefficients that the neighbours
/// let expect, or kChromaDc. Returns the number of coefficients that are not 0. Levels are below 2048 in size.
int WriteLevels(BitWriter& bits, std::span<const std::int16_t> levels, int expected);

}  // namespace kestrum::media::h264
