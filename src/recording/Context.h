// What a routine of the recording room is given: all of the project room, the states of the device and display rooms,
// and its own. References only; copying is cheap, the owner is Session.
#pragma once

#include "devices/Context.h"
#include "display/Context.h"
#include "recording/State.h"

namespace kestrum::recording {

struct Context : project::Context {
    devices::State& devices;
    display::State& display;
    State& recording;

    operator devices::Context() const { return {static_cast<const project::Context&>(*this), devices}; }
    operator display::Context() const { return {static_cast<const project::Context&>(*this), display}; }
};

}  // namespace kestrum::recording
