// Sizes and places of monitors in physical pixels, whatever the scaling of the desktop.
#pragma once

#include "support/Context.h"

namespace kestrum::modMonitor {

/// Units of GetMonitorWidth and GetMonitorHeight.
inline constexpr std::int32_t kTwips = 1;
inline constexpr std::int32_t kPixels = 3;

/// Physical width of a monitor (0: the default one); 0 for an unknown monitor.
std::int32_t GetMonitorWidth(const support::Context& c, host::MonitorHandle monitor, std::int32_t unit);
std::int32_t GetMonitorHeight(const support::Context& c, host::MonitorHandle monitor, std::int32_t unit);

/// Physical rectangle of a monitor; empty for an unknown one. A corner that cannot be converted is reported in a box
/// and stays as it is.
host::Rect GetMonitorRect(const support::Context& c, host::MonitorHandle monitor);

/// Where a physical rectangle lies in the desktop's logical coordinates. Without scaling (or with its top left corner
/// outside all monitors) it is the same rectangle.
host::Rect PhysicalToLogicalRect(const support::Context& c, const host::Rect& physical);

}  // namespace kestrum::modMonitor
