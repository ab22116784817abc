// What routines of this room and of all above it work with: the ports, the forms, the shared state. References only.
#pragma once

#include "host/Host.h"
#include "support/State.h"
#include "ui/Forms.h"

namespace kestrum::support {

struct Context {
    host::Host& host;
    ui::Forms& forms;
    State& support;
};

}  // namespace kestrum::support
