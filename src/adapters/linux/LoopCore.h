// What the two event loops of Linux share: tasks, timers and watched descriptors, and the order in which they are
// handled. All of it hangs on one epoll descriptor, so that any outer loop (poll, Qt) only has to watch that one.
// An exception of a callback ends here: it is noted in the trace, and the loop goes on.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/linux/Descriptor.h"
#include "host/IEventLoop.h"
#include "host/ITrace.h"

namespace kestrum::platform {

/// A watched descriptor; destroying it ends the watch (allowed inside its own callback). It does not close the
/// descriptor, and must be destroyed before the descriptor is closed.
class IWatch {
  public:
    virtual ~IWatch() = default;
};

class LoopCore {
  public:
    explicit LoopCore(host::ITrace& trace);
    LoopCore(const LoopCore&) = delete;
    LoopCore& operator=(const LoopCore&) = delete;
    ~LoopCore();

    /// Readable while a task, a timer or a watched descriptor waits to be handled.
    int ReadyDescriptor() const { return m_epoll.Get(); }

    [[nodiscard]] std::unique_ptr<host::ITimer> StartTimer(const String& name, std::int32_t intervalMs,
                                                           host::TimerReentry reentry, std::function<void()> callback);
    /// Calls `ready` from a pump while `fd` is readable (level triggered).
    [[nodiscard]] std::unique_ptr<IWatch> WatchDescriptor(int fd, std::function<void()> ready);
    /// From any thread.
    void Post(std::function<void()> task);

    /// Handles one thing that is due; false if nothing is. Tasks, timers and descriptors take turns.
    bool RunOne();
    /// Handles what is due at the moment of the call, each thing once. Tasks posted meanwhile wait for the next call.
    void RunDue();

    /// Nanoseconds since boot, suspended time included.
    static std::int64_t BootTime();

  private:
    struct TimerState;
    class TimerHandle;
    struct WatchState;
    class WatchHandle;

    bool RunTask();
    bool RunTimer(std::int64_t now);
    bool RunWatch();
    void RunReadyWatches();
    void Dispatch(std::uint64_t watchId);
    void Arm();
    void AddToEpoll(int fd, std::uint64_t id);
    void Guarded(const std::string& what, const std::function<void()>& callback);
    std::shared_ptr<TimerState> NextTimer();

    host::ITrace& m_trace;
    Descriptor m_epoll, m_wake, m_clock;
    std::mutex m_mutex;  ///< guards m_tasks and m_wake's state
    std::deque<std::function<void()>> m_tasks;
    std::vector<std::shared_ptr<TimerState>> m_timers;
    std::map<std::uint64_t, std::shared_ptr<WatchState>> m_watches;
    std::uint64_t m_nextId = 0;
    int m_turn = 0;
};

}  // namespace kestrum::platform
