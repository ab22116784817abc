// What is written of a macroblock: how it is predicted, and the levels of what is left.
#pragma once

#include "media/capture/h264/Frame.h"
#include "media/capture/h264/IntraPrediction.h"
#include "media/capture/h264/Transform.h"

namespace kestrum::media::h264 {

struct Macroblock {
    bool isIntra = false;
    LumaMode lumaMode{};      ///< intra
    ChromaMode chromaMode{};  ///< intra
    Vector vector;            ///< not intra

    std::array<Levels, 16> luma;  ///< raster order of the blocks; intra: without their DC
    Levels lumaDc;                ///< intra
    unsigned lumaPattern = 0;     ///< one bit for each 8x8 quarter with levels in `luma`; intra: all or none
    std::array<ChromaDcLevels, 2> chromaDc;
    std::array<std::array<Levels, 4>, 2> chromaAc;
    unsigned chromaPattern = 0;  ///< 0 nothing, 1 DC, 2 DC and AC

    bool HasLevels() const { return lumaPattern != 0 || chromaPattern != 0; }
};

/// Fills in the levels of the difference between `source` and `samples`, the prediction of a macroblock whose kind is
/// set, at this parameter of luma; `samples` becomes what decoders will show.
void CodeResidual(const MacroblockSamples& source, int parameter, Macroblock& macroblock, MacroblockSamples& samples);

}  // namespace kestrum::media::h264
