// Where the lecturer can be shown something that neither the audience nor the recording sees: on another monitor, else
// beside the recorded region where that leaves room.
#pragma once

#include <optional>

#include "recording/Context.h"

namespace kestrum::recording {

/// A place of this size in logical pixels of the desktop; none if all there is is recorded.
std::optional<host::Rect> LecturerPlace(const Context& c, std::int32_t width, std::int32_t height);

}  // namespace kestrum::recording
