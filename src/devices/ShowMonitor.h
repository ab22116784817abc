// The monitor on which a user wants the slides: kept by name, so that it is found again wherever it is plugged in. The
// host has a setting of its own for it, which an office that is started for one recording does not know.
#pragma once

#include "devices/Context.h"
#include "host/IApplication.h"

namespace kestrum::devices {

/// Keeps the choice, and tells the host. `number` from 1 in IMonitors::Handles' order; 0: the host chooses.
void KeepShowMonitor(const Context& c, host::ISlideShowSettings& shows, std::int32_t number);

/// Tells the choice to a host that has none of its own. A monitor that is not there is left alone.
void ApplyShowMonitor(const Context& c, host::ISlideShowSettings& shows);

}  // namespace kestrum::devices
