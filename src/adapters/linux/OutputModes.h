// The modes of one output, in the sizes that they have on the desktop: of a monitor that stands on its side width and
// height are exchanged.
#pragma once

#include <xcb/randr.h>

#include <optional>
#include <vector>

#include "adapters/linux/X11Connection.h"

namespace kestrum::platform {

struct OutputMode {
    xcb_randr_mode_t id = XCB_NONE;
    std::int32_t width = 0, height = 0;  ///< pixels
    std::int32_t rate = 0;               ///< hertz, to the nearest; 0 if the mode does not say
};

struct OutputModes {
    std::vector<OutputMode> all;        ///< in the output's own order
    std::optional<OutputMode> inForce;  ///< none while the output shows nothing
};

/// Empty for an output that cannot be asked.
OutputModes ReadOutputModes(X11Connection& display, xcb_randr_output_t output);

/// Refresh rate of a mode in hertz, to the nearest; 0 if the mode does not say.
std::int32_t RefreshRate(const xcb_randr_mode_info_t& mode);

}  // namespace kestrum::platform
