// The values of display decisions: the monitor of the show, the slide and capture rectangles, the surveyed modes.
#pragma once

#include <cstdint>

#include "host/IMonitors.h"

namespace kestrum::display {

struct State {
    /// Monitor of the show; 0 is the default monitor.
    host::MonitorHandle g_Monitor = 0;
    /// Physical size of that monitor in pixels.
    std::int32_t g_ScreenWidth = 0, g_ScreenHeight = 0;
    /// Size of the capture region in pixels, multiples of 4.
    std::int32_t g_RegionWidth = 0, g_RegionHeight = 0;
    /// The capture rectangle in physical desktop pixels, all four inclusive.
    std::int32_t g_CaptureLeft = 0, g_CaptureTop = 0, g_CaptureRight = 0, g_CaptureBottom = 0;
    /// Slide size in points.
    std::int32_t g_SlideWidthPt = 0, g_SlideHeightPt = 0;
    /// Largest mode of the surveyed monitor at its present depth and rate.
    std::int32_t g_MaxResWidth = 0, g_MaxResHeight = 0;
    /// Recommended mode.
    std::int32_t g_RcmdResWidth = 0, g_RcmdResHeight = 0;
    /// Result of the resolution dialogs: 0 cancelled, else go on.
    std::int32_t g_ResDialogResult = 0;
};

}  // namespace kestrum::display
