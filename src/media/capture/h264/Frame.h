// A picture as decoders hold it: whole macroblocks, three planes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace kestrum::media::h264 {

/// A displacement in whole samples of luma.
struct Vector {
    int x = 0;
    int y = 0;

    friend bool operator==(const Vector&, const Vector&) = default;
};

/// Samples of one macroblock, line by line.
struct MacroblockSamples {
    std::array<std::uint8_t, 256> luma;
    std::array<std::array<std::uint8_t, 64>, 2> chroma;  ///< Cb, Cr
};

struct Plane {
    Plane(int w, int h) : width(w), height(h), samples(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

    std::uint8_t* At(int x, int y) { return samples.data() + static_cast<std::ptrdiff_t>(y) * width + x; }
    const std::uint8_t* At(int x, int y) const { return samples.data() + static_cast<std::ptrdiff_t>(y) * width + x; }

    int width;
    int height;
    std::vector<std::uint8_t> samples;
};

struct Frame {
    /// Size in macroblocks.
    Frame(int c, int r) : columns(c), rows(r), luma(c * 16, r * 16), chroma{Plane(c * 8, r * 8), Plane(c * 8, r * 8)} {}

    int columns;
    int rows;
    Plane luma;
    std::array<Plane, 2> chroma;
};

/// Copies a square of samples, line by line, out of a plane.
template <std::size_t kSide>
void Take(const Plane& from, int x, int y, std::uint8_t* to) {
    for (std::size_t line = 0; line < kSide; ++line) {
        std::memcpy(to + line * kSide, from.At(x, y + static_cast<int>(line)), kSide);
    }
}

/// Copies a square of samples into a plane.
template <std::size_t kSide>
void Put(const std::uint8_t* from, Plane& to, int x, int y) {
    for (std::size_t line = 0; line < kSide; ++line) {
        std::memcpy(to.At(x, y + static_cast<int>(line)), from + line * kSide, kSide);
    }
}

inline MacroblockSamples TakeMacroblock(const Frame& from, int column, int row) {
    MacroblockSamples samples;
    Take<16>(from.luma, column * 16, row * 16, samples.luma.data());
    for (std::size_t i = 0; i < 2; ++i) Take<8>(from.chroma[i], column * 8, row * 8, samples.chroma[i].data());
    return samples;
}

inline void PutMacroblock(const MacroblockSamples& samples, Frame& to, int column, int row) {
    Put<16>(samples.luma.data(), to.luma, column * 16, row * 16);
    for (std::size_t i = 0; i < 2; ++i) Put<8>(samples.chroma[i].data(), to.chroma[i], column * 8, row * 8);
}

/// Sum of the absolute differences of luma.
inline int Distance(const std::uint8_t* one, const std::uint8_t* other, std::ptrdiff_t otherStride) {
    int sum = 0;
    for (int line = 0; line < 16; ++line, one += 16, other += otherStride) {
        for (int x = 0; x < 16; ++x) sum += std::abs(one[x] - other[x]);
    }
    return sum;
}

}  // namespace kestrum::media::h264
