// Time and events: the only clock, timer, sleep and message pump that the core knows. One thread. Virtual in tests.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "host/String.h"

namespace kestrum::host {

/// A local date and time of day.
struct DateTime {
    int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0, millisecond = 0;
};

/// A running timer. Destroying it stops it; that is allowed inside its own callback.
class ITimer {
  public:
    virtual ~ITimer() = default;
};

/// What happens when a timer falls due while its own callback runs (inside a pump of that callback).
enum class TimerReentry {
    Skipped,  ///< a form's timer: the callback is not entered again
    Entered,  ///< a system timer: the callback is entered again
};

class IEventLoop {
  public:
    virtual ~IEventLoop() = default;

    /// The millisecond tick as a signed 32-bit counter that wraps; counts suspended time too.
    virtual std::int32_t TickCount() = 0;
    /// Local date and time.
    virtual DateTime Now() = 0;

    /// Calls `callback` every `intervalMs` (at least 1) from a pump, first after one interval. Order of timers that
    /// fall due together: due time, then creation. `name` appears in traces.
    [[nodiscard]] virtual std::unique_ptr<ITimer> StartTimer(const String& name, std::int32_t intervalMs,
                                                             TimerReentry reentry, std::function<void()> callback) = 0;

    /// Runs `task` from the next pump. May be called from any thread; the only member that may.
    virtual void Post(std::function<void()> task) = 0;

    /// Handles everything that is due now, then returns. Re-enters; moves no time.
    virtual void DoEvents() = 0;

    /// Lets `ms` milliseconds pass and dispatches nothing.
    virtual void Sleep(std::int32_t ms) = 0;

    /// Pumps, waiting for events, until `done` answers true. Re-enters. `done` is asked after each event.
    virtual void RunUntil(const std::function<bool()>& done) = 0;
};

}  // namespace kestrum::host
