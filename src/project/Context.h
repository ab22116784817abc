// What a routine of the project store is given: the ports, the forms, the states of this room and of the one below.
// References only; copying is cheap, the owner is Session.
#pragma once

#include "project/State.h"
#include "support/Context.h"

namespace kestrum::project {

struct Context : support::Context {
    State& project;
};

}  // namespace kestrum::project
