// Remembers the requests to stay awake.
#pragma once

#include <vector>

#include "host/IPower.h"

namespace kestrum::sim {

class Power : public host::IPower {
  public:
    void SetExecutionState(std::uint32_t state) override { states.push_back(state); }
    bool KeepsDisplayAwake() override { return keepsDisplayAwake; }

    bool keepsDisplayAwake = true;
    std::vector<std::uint32_t> states;
};

}  // namespace kestrum::sim
