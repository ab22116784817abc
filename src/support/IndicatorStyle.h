// How the small windows look that accompany a recording: above everything, without a frame, never with the keyboard,
// and never part of the recorded picture.
#pragma once

#include "ui/Form.h"

namespace kestrum::support {

constexpr std::int32_t kSolid = 255;
constexpr std::int32_t kSeeThrough = 150;  ///< where the desktop can do that

/// `opacity` is 0 to 255.
inline ui::WindowStyle IndicatorStyle(std::int32_t opacity = kSolid) {
    return {.topmost = true,
            .borderless = true,
            .layered = true,
            .opacity = opacity,
            .excludedFromCapture = true,
            .closable = false,
            .activates = false};
}

}  // namespace kestrum::support
