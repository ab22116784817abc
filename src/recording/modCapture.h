// Which rectangle of which monitor is captured, and whether it may be: size of the package, colour depth, monitor of
// the show, slide region, frame size of older media, large frames, masks.
#pragma once

#include <cstdint>

#include "recording/Context.h"

namespace kestrum::modCapture {

/// Largest package in bytes, 1.8 GiB.
constexpr std::int64_t kLargestPackage = 1932735283;

/// The package and `extra` bytes stay within the largest size; false after telling why. Re-enters.
bool CheckMaxSize(const recording::Context& c, std::int64_t extra);

/// Sets the capture rectangle for a show window at this position (points) and leaves the masks loaded if it is smaller
/// than the screen. False after telling why, the masks unloaded. Re-enters.
bool CheckCaptureRegion(const recording::Context& c, float left, float top);

/// The body of CheckCaptureRegion.
bool ComputeCaptureRegion(const recording::Context& c, float left, float top);

}  // namespace kestrum::modCapture
