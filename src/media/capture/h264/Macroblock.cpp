#include "media/capture/h264/Macroblock.h"

#include <algorithm>

namespace kestrum::media::h264 {
namespace {

/// A 4x4 block of samples of a macroblock's plane.
struct BlockView {
    const std::uint8_t* source;
    std::uint8_t* samples;
    std::ptrdiff_t stride;
};

BlockView LumaBlock(const MacroblockSamples& source, MacroblockSamples& samples, std::size_t block) {
    const std::size_t at = block / 4 * 4 * 16 + block % 4 * 4;
    return {source.luma.data() + at, samples.luma.data() + at, 16};
}

BlockView ChromaBlock(const MacroblockSamples& source, MacroblockSamples& samples, std::size_t plane,
                      std::size_t block) {
    const std::size_t at = block / 2 * 4 * 8 + block % 2 * 4;
    return {source.chroma[plane].data() + at, samples.chroma[plane].data() + at, 8};
}

Block Transformed(const BlockView& view) {
    Block block;
    for (std::ptrdiff_t y = 0; y < 4; ++y) {
        for (std::ptrdiff_t x = 0; x < 4; ++x) {
            const std::ptrdiff_t at = y * view.stride + x;
            block[static_cast<std::size_t>(y * 4 + x)] = view.source[at] - view.samples[at];
        }
    }
    ForwardTransform(block);
    return block;
}

void AddInverse(Block coefficients, const BlockView& view) {
    InverseTransform(coefficients);
    for (std::ptrdiff_t y = 0; y < 4; ++y) {
        for (std::ptrdiff_t x = 0; x < 4; ++x) {
            std::uint8_t& sample = view.samples[y * view.stride + x];
            sample = static_cast<std::uint8_t>(
                std::clamp(sample + coefficients[static_cast<std::size_t>(y * 4 + x)], 0, 255));
        }
    }
}

// The quarter of the macroblock that a block lies in.
unsigned QuarterOf(std::size_t block) {
    return static_cast<unsigned>(block / 8 * 2 + block % 4 / 2);
}

void CodeLuma(const MacroblockSamples& source, const Quantiser& quantiser, Macroblock& macroblock,
              MacroblockSamples& samples) {
    for (std::size_t i = 0; i < 16; ++i) {
        const BlockView view = LumaBlock(source, samples, i);
        if (!quantiser.Quantise(Transformed(view), Rounding::kInter, 0, macroblock.luma[i])) continue;
        macroblock.lumaPattern |= 1U << QuarterOf(i);
        AddInverse(quantiser.Scale(macroblock.luma[i], 0), view);
    }
}

void CodeWholeLuma(const MacroblockSamples& source, const Quantiser& quantiser, Macroblock& macroblock,
                   MacroblockSamples& samples) {
    constexpr unsigned kAllQuarters = 15;
    Block dc;
    for (std::size_t i = 0; i < 16; ++i) {
        const Block coefficients = Transformed(LumaBlock(source, samples, i));
        dc[i] = coefficients[0];
        if (quantiser.Quantise(coefficients, Rounding::kIntra, 1, macroblock.luma[i])) {
            macroblock.lumaPattern = kAllQuarters;
        }
    }
    quantiser.QuantiseLumaDc(dc, macroblock.lumaDc);
    const Block scaledDc = quantiser.ScaleLumaDc(macroblock.lumaDc);
    for (std::size_t i = 0; i < 16; ++i) {
        Block coefficients = quantiser.Scale(macroblock.luma[i], 1);
        coefficients[0] = scaledDc[i];
        AddInverse(coefficients, LumaBlock(source, samples, i));
    }
}

void CodeChroma(const MacroblockSamples& source, const Quantiser& quantiser, std::size_t plane, Macroblock& macroblock,
                MacroblockSamples& samples) {
    const Rounding rounding = macroblock.isIntra ? Rounding::kIntra : Rounding::kInter;
    ChromaDc dc;
    unsigned pattern = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const Block coefficients = Transformed(ChromaBlock(source, samples, plane, i));
        dc[i] = coefficients[0];
        if (quantiser.Quantise(coefficients, rounding, 1, macroblock.chromaAc[plane][i])) pattern = 2;
    }
    if (quantiser.QuantiseChromaDc(dc, rounding, macroblock.chromaDc[plane])) pattern = std::max(pattern, 1U);
    macroblock.chromaPattern = std::max(macroblock.chromaPattern, pattern);
    if (pattern == 0) return;
    const ChromaDc scaledDc = quantiser.ScaleChromaDc(macroblock.chromaDc[plane]);
    for (std::size_t i = 0; i < 4; ++i) {
        Block coefficients = quantiser.Scale(macroblock.chromaAc[plane][i], 1);
        coefficients[0] = scaledDc[i];
        AddInverse(coefficients, ChromaBlock(source, samples, plane, i));
    }
}

}  // namespace

void CodeResidual(const MacroblockSamples& source, int parameter, Macroblock& macroblock, MacroblockSamples& samples) {
    const Quantiser luma(parameter), chroma(ChromaParameter(parameter));
    macroblock.lumaPattern = macroblock.chromaPattern = 0;
    if (macroblock.isIntra) {
        CodeWholeLuma(source, luma, macroblock, samples);
    } else {
        CodeLuma(source, luma, macroblock, samples);
    }
    for (std::size_t plane = 0; plane < 2; ++plane) CodeChroma(source, chroma, plane, macroblock, samples);
}

}  // namespace kestrum::media::h264
