// See-through pixels over others.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kestrum::media {

/// `over` is premultiplied ARGB: result = over + below * (1 - alpha). The upper byte of the result is that of `below`
/// where `over` does not show, else 0.
inline std::uint32_t Blend(std::uint32_t over, std::uint32_t below) {
    const std::uint32_t keep = 255 - (over >> 24);
    if (keep == 255) return below;
    std::uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const std::uint32_t value = ((over >> shift) & 0xFF) + (((below >> shift) & 0xFF) * keep + 127) / 255;
        result |= std::min<std::uint32_t>(value, 255) << shift;
    }
    return result;
}

/// A premultiplied pixel at `opacity` of 255.
inline std::uint32_t Faded(std::uint32_t pixel, std::uint32_t opacity) {
    if (opacity == 255) return pixel;
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        result |= (((pixel >> shift) & 0xFF) * opacity + 127) / 255 << shift;
    }
    return result;
}

}  // namespace kestrum::media
