// Changing the mode of one output while the others keep theirs: the screen grows or shrinks to what they need together,
// and what stood to the right of the output, or below it, moves along.
#pragma once

#include <xcb/randr.h>

#include "adapters/linux/X11Connection.h"

namespace kestrum::platform {

/// Gives `output` a mode of this size, at the present refresh rate if there is one. False if it has none or the server
/// refuses; the old layout is back then.
bool ChangeOutputMode(X11Connection& display, xcb_randr_output_t output, std::int32_t width, std::int32_t height);

}  // namespace kestrum::platform
