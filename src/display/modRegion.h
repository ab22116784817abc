// The part of the screen that the slide fills when the show keeps the slide's aspect ratio.
#pragma once

#include <cstdint>

#include "display/Context.h"

namespace kestrum::modRegion {

struct Size {
    std::int32_t width = 0, height = 0;
    bool operator==(const Size&) const = default;
};

/// `value` rounded down to the alignment of the capture region, 4 pixels.
std::int32_t RoundDownTo4(std::int32_t value);

/// The slide's region on a screen of `screen` pixels, both sides multiples of 4. Throws host::Error 11 for a screen or
/// slide without height.
Size SlideRegionOf(Size screen, Size slidePoints);

/// Sets g_RegionWidth and g_RegionHeight from g_ScreenWidth, g_ScreenHeight and the slide's size.
void SlideRegion(const display::Context& c);

}  // namespace kestrum::modRegion
