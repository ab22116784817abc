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
    /// From now on SIGINT, SIGTERM and SIGHUP call `onEnd` from a pump instead of ending the process. Make it before
    /// any thread starts, since threads inherit what is blocked. Destroying it gives the signals their meaning back.
    EndSignals(LoopBase& loop, std::function<void()> onEnd);
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals();

  private:
    void Read();

    std::function<void()> m_onEnd;
    sigset_t m_before{};
    Descriptor m_signals;
    std::unique_ptr<IWatch> m_watch;
};

}  // namespace kestrum::platform
