// Where a macroblock's content was in the picture before: whole samples, so that a prediction is a copy. Things on a
// screen move by whole pixels.
#pragma once

#include <span>

#include "media/capture/h264/Frame.h"

namespace kestrum::media::h264 {

struct Match {
    Vector vector;
    int cost = 0;  ///< distance of luma, and what the vector costs
};

/// The best of the candidates, and from there downhill. Vectors stay inside the picture. `costOfBit` weighs a vector's
/// length against a difference of samples; vectors are written as the difference from `predicted`.
Match FindMotion(const MacroblockSamples& source, const Frame& reference, int column, int row,
                 std::span<const Vector> candidates, Vector predicted, int costOfBit);

/// The samples that a vector predicts; it must not lead out of the picture.
MacroblockSamples PredictByMotion(const Frame& reference, int column, int row, Vector vector);

}  // namespace kestrum::media::h264
