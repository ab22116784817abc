#include "display/modRegion.h"

#include "support/Numbers.h"

namespace kestrum::modRegion {
namespace {

constexpr std::int32_t kAlignment = 4;

/// `length` * `over` / `under`, to the nearest integer, then down to the alignment.
std::int32_t Scaled(std::int32_t length, std::int32_t over, std::int32_t under) {
    return RoundDownTo4(ToInt32(Div(static_cast<double>(length) * over, under)));
}

}  // namespace

std::int32_t RoundDownTo4(std::int32_t value) {
    return value - value % kAlignment;
}

// The ratios compare the true sizes; what is scaled is the rounded one.
Size SlideRegionOf(Size screen, Size slidePoints) {
    Size region{RoundDownTo4(screen.width), RoundDownTo4(screen.height)};
    const double screenRatio = Div(screen.width, screen.height);
    const double slideRatio = Div(slidePoints.width, slidePoints.height);
    if (slideRatio > screenRatio)
        region.height = Scaled(region.width, slidePoints.height, slidePoints.width);
    else if (slideRatio < screenRatio)
        region.width = Scaled(region.height, slidePoints.width, slidePoints.height);
    return region;
}

void SlideRegion(const display::Context& c) {
    display::State& s = c.display;
    const Size region = SlideRegionOf({s.g_ScreenWidth, s.g_ScreenHeight}, {s.g_SlideWidthPt, s.g_SlideHeightPt});
    s.g_RegionWidth = region.width;
    s.g_RegionHeight = region.height;
}

}  // namespace kestrum::modRegion
