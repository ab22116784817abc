// `kestrum devices --list`: the devices that can record, by the names under which they are chosen.
#pragma once

#include "apps/commandline/Console.h"
#include "devices/modDevice.h"

namespace kestrum::app {

struct DeviceOverview {
    modDevice::DeviceList microphones, cameras;
    bool hearsComputer = false;  ///< the computer's own sound can be recorded
};

/// What is there now; devices that cannot be asked for count as none.
DeviceOverview LookAtDevices(const support::Context& c);

/// Prints the overview, as one line of JSON if `json`. The exit code: 0.
int RunDeviceList(const support::Context& c, Console& console, bool json);

}  // namespace kestrum::app
