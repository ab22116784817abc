// What a routine of the display room is given. References only; copying is cheap, the owner is Session.
#pragma once

#include "display/State.h"
#include "project/Context.h"

namespace kestrum::display {

struct Context : project::Context {
    State& display;
};

}  // namespace kestrum::display
