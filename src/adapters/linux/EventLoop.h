// The event loop of programs without a toolkit: batch commands and tests.
#pragma once

#include "adapters/linux/LoopBase.h"

namespace kestrum::platform {

class EventLoop : public LoopBase {
  public:
    explicit EventLoop(host::ITrace& trace) : LoopBase(trace) {}

    void DoEvents() override;
    void RunUntil(const std::function<bool()>& done) override;
};

}  // namespace kestrum::platform
