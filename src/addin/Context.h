// What a routine of the shell is given: everything. References only; the owner is Session.
#pragma once

#include "addin/State.h"
#include "publish/Context.h"
#include "recording/Context.h"

namespace kestrum::addin {

struct Context : recording::Context {
    publish::State& publish;
    State& addin;

    operator publish::Context() const { return {static_cast<const project::Context&>(*this), publish}; }
};

}  // namespace kestrum::addin
