// What a publish dialog works with. References only.
#pragma once

#include "project/Context.h"
#include "publish/State.h"

namespace kestrum::publish {

struct Context : project::Context {
    State& publish;
};

}  // namespace kestrum::publish
