// The part of the event-loop port that does not depend on who pumps: clock, timers, tasks, descriptors. A loop of
// Linux derives from it and adds the two pumps.
#pragma once

#include "adapters/linux/LoopCore.h"

namespace kestrum::platform {

class LoopBase : public host::IEventLoop {
  public:
    LoopBase(const LoopBase&) = delete;
    LoopBase& operator=(const LoopBase&) = delete;

    std::int32_t TickCount() override;
    host::DateTime Now() override;
    [[nodiscard]] std::unique_ptr<host::ITimer> StartTimer(const String& name, std::int32_t intervalMs,
                                                           host::TimerReentry reentry,
                                                           std::function<void()> callback) override;
    void Post(std::function<void()> task) override;
    void Sleep(std::int32_t ms) override;

    /// Calls `ready` from a pump while `fd` is readable.
    [[nodiscard]] std::unique_ptr<IWatch> WatchDescriptor(int fd, std::function<void()> ready);

  protected:
    explicit LoopBase(host::ITrace& trace) : m_core(trace) {}

    LoopCore m_core;
};

}  // namespace kestrum::platform
