// A macroblock predicted from the samples around it: for what a moving thing uncovers, and for plain areas.
#pragma once

#include "media/capture/h264/Frame.h"

namespace kestrum::media::h264 {

/// Numbers of the standard for luma predicted as a whole.
enum class LumaMode { kVertical = 0, kHorizontal = 1, kMean = 2 };
/// And for chroma.
enum class ChromaMode { kMean = 0, kHorizontal = 1, kVertical = 2 };

struct IntraMatch {
    LumaMode lumaMode = LumaMode::kMean;
    ChromaMode chromaMode = ChromaMode::kMean;
    int cost = 0;  ///< distance of luma
    MacroblockSamples samples;
};

/// The best prediction from what lies above and to the left of the macroblock in `picture`, which is coded up to here.
IntraMatch PredictInside(const MacroblockSamples& source, const Frame& picture, int column, int row);

}  // namespace kestrum::media::h264
