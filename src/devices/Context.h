// What the device routines work with: all of the project room, and the devices' state.
#pragma once

#include "devices/State.h"
#include "project/Context.h"

namespace kestrum::devices {

struct Context : project::Context {
    State& devices;
};

}  // namespace kestrum::devices
