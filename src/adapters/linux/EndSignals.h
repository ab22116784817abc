// Requests to end from outside, as tasks of the loop: Ctrl-C, termination by the system, the end of the session. So a
// recording can be ended in the normal way.
#pragma once

#include <signal.h>

#include <functional>
#include <memory>

#include "adapters/linux/LoopBase.h"

namespace kestrum::platform {

class EndSignals {
  public:
    /// Keeps the three signals waiting from now on. A program calls it before any thread starts (toolkits start some of
    /// their own), since threads inherit what is blocked.
    static void Hold();

    /// From now on SIGINT, SIGTERM and SIGHUP call `onEnd` with their number from a pump instead of ending the process.
    /// Destroying it makes them what they were before.
    EndSignals(LoopBase& loop, std::function<void(int)> onEnd);
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals();

  private:
    void Read();

    std::function<void(int)> m_onEnd;
    sigset_t m_before{};
    Descriptor m_signals;
    std::unique_ptr<IWatch> m_watch;
};

}  // namespace kestrum::platform
