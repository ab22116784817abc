#include "adapters/linux/LoopCore.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <utility>

#include "adapters/linux/PosixError.h"

namespace kestrum::platform {
namespace {

constexpr std::int64_t kNsPerMs = 1'000'000;
constexpr std::int64_t kNsPerSecond = 1'000'000'000;
constexpr std::uint64_t kWakeId = 0;
constexpr std::uint64_t kClockId = 1;
constexpr std::uint64_t kFirstWatchId = 2;

Descriptor Checked(int fd, const char16_t* what) {
    if (fd < 0) ThrowSystemError(errno, u"EventLoop", what);
    return Descriptor(fd);
}

}  // namespace

struct LoopCore::TimerState {
    std::uint64_t id = 0;
    std::string name;
    std::int64_t due = 0;
    std::int64_t interval = 0;
    host::TimerReentry reentry = host::TimerReentry::Skipped;
    std::function<void()> callback;
    int depth = 0;  ///< how often its callback is on the stack
    bool stopped = false;
};

/// The handle and the loop share the state, so either may go first.
class LoopCore::TimerHandle : public host::ITimer {
  public:
    explicit TimerHandle(std::shared_ptr<TimerState> state) : m_state(std::move(state)) {}
    TimerHandle(const TimerHandle&) = delete;
    TimerHandle& operator=(const TimerHandle&) = delete;
    ~TimerHandle() override {
        m_state->stopped = true;
        if (m_state->depth == 0) m_state->callback = nullptr;
    }

  private:
    std::shared_ptr<TimerState> m_state;
};

struct LoopCore::WatchState {
    LoopCore* owner = nullptr;  ///< null once the loop is gone
    std::uint64_t id = 0;
    int fd = -1;
    std::function<void()> ready;
};

class LoopCore::WatchHandle : public IWatch {
  public:
    explicit WatchHandle(std::shared_ptr<WatchState> state) : m_state(std::move(state)) {}
    WatchHandle(const WatchHandle&) = delete;
    WatchHandle& operator=(const WatchHandle&) = delete;
    ~WatchHandle() override {
        if (!m_state->owner) return;
        epoll_ctl(m_state->owner->m_epoll.Get(), EPOLL_CTL_DEL, m_state->fd, nullptr);
        m_state->owner->m_watches.erase(m_state->id);
    }

  private:
    std::shared_ptr<WatchState> m_state;
};

LoopCore::LoopCore(host::ITrace& trace)
    : m_trace(trace),
      m_epoll(Checked(epoll_create1(EPOLL_CLOEXEC), u"epoll")),
      m_wake(Checked(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), u"eventfd")),
      m_clock(Checked(timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK), u"timerfd")),
      m_nextId(kFirstWatchId) {
    AddToEpoll(m_wake.Get(), kWakeId);
    AddToEpoll(m_clock.Get(), kClockId);
}

LoopCore::~LoopCore() {
    for (const auto& [id, watch] : m_watches) watch->owner = nullptr;
}

std::int64_t LoopCore::BootTime() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

void LoopCore::AddToEpoll(int fd, std::uint64_t id) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = id;
    if (epoll_ctl(m_epoll.Get(), EPOLL_CTL_ADD, fd, &event) != 0) ThrowSystemError(errno, u"EventLoop", u"epoll");
}

std::unique_ptr<host::ITimer> LoopCore::StartTimer(const String& name, std::int32_t intervalMs,
                                                   host::TimerReentry reentry, std::function<void()> callback) {
    auto timer = std::make_shared<TimerState>();
    timer->id = m_nextId++;
    timer->name = host::ToUtf8(name);
    timer->interval = std::max<std::int64_t>(intervalMs, 1) * kNsPerMs;
    timer->due = BootTime() + timer->interval;
    timer->reentry = reentry;
    timer->callback = std::move(callback);
    m_timers.push_back(timer);
    Arm();
    return std::make_unique<TimerHandle>(std::move(timer));
}

std::unique_ptr<IWatch> LoopCore::WatchDescriptor(int fd, std::function<void()> ready) {
    auto watch = std::make_shared<WatchState>();
    watch->owner = this;
    watch->id = m_nextId++;
    watch->fd = fd;
    watch->ready = std::move(ready);
    AddToEpoll(fd, watch->id);
    m_watches[watch->id] = watch;
    return std::make_unique<WatchHandle>(std::move(watch));
}

void LoopCore::Post(std::function<void()> task) {
    const std::lock_guard lock(m_mutex);
    m_tasks.push_back(std::move(task));
    eventfd_write(m_wake.Get(), 1);
}

bool LoopCore::RunOne() {
    constexpr int kKinds = 3;
    for (int tried = 0; tried < kKinds; ++tried) {
        const int kind = m_turn;
        m_turn = (m_turn + 1) % kKinds;
        if (kind == 0 && RunTask()) return true;
        if (kind == 1 && RunTimer(BootTime())) return true;
        if (kind == 2 && RunWatch()) return true;
    }
    return false;
}

void LoopCore::RunDue() {
    const std::int64_t now = BootTime();
    std::size_t tasks = 0;
    {
        const std::lock_guard lock(m_mutex);
        tasks = m_tasks.size();
    }
    while (tasks-- > 0 && RunTask()) {
    }
    while (RunTimer(now)) {
    }
    RunReadyWatches();
}

bool LoopCore::RunTask() {
    std::function<void()> task;
    {
        const std::lock_guard lock(m_mutex);
        if (m_tasks.empty()) return false;
        task = std::move(m_tasks.front());
        m_tasks.pop_front();
        eventfd_t ignored = 0;
        if (m_tasks.empty()) eventfd_read(m_wake.Get(), &ignored);
    }
    Guarded("posted task", task);
    return true;
}

std::shared_ptr<LoopCore::TimerState> LoopCore::NextTimer() {
    std::erase_if(m_timers, [](const auto& timer) { return timer->stopped; });
    const auto next = std::min_element(m_timers.begin(), m_timers.end(), [](const auto& a, const auto& b) {
        return a->due != b->due ? a->due < b->due : a->id < b->id;
    });
    return next == m_timers.end() ? nullptr : *next;
}

/// Lets the earliest timer that is due at `now` fire. Its next time is set first, so that a nested pump sees it. Times
/// that were missed are not made up for: one call, then a full interval.
bool LoopCore::RunTimer(std::int64_t now) {
    const auto timer = NextTimer();
    if (!timer || timer->due > now) {
        Arm();
        return false;
    }
    timer->due += timer->interval;
    if (timer->due <= now) timer->due = now + timer->interval;
    Arm();
    if (timer->depth > 0 && timer->reentry == host::TimerReentry::Skipped) return true;
    ++timer->depth;
    Guarded("timer " + timer->name, timer->callback);
    --timer->depth;
    if (timer->stopped && timer->depth == 0) timer->callback = nullptr;
    return true;
}

void LoopCore::Arm() {
    const auto timer = NextTimer();
    itimerspec when{};
    if (timer) {
        when.it_value.tv_sec = timer->due / kNsPerSecond;
        when.it_value.tv_nsec = timer->due % kNsPerSecond;
    }
    timerfd_settime(m_clock.Get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

bool LoopCore::RunWatch() {
    std::array<epoll_event, 16> events{};
    const int count = epoll_wait(m_epoll.Get(), events.data(), static_cast<int>(events.size()), 0);
    for (int i = 0; i < count; ++i) {
        const std::uint64_t id = events[static_cast<std::size_t>(i)].data.u64;
        if (id < kFirstWatchId) continue;
        Dispatch(id);
        return true;
    }
    return false;
}

void LoopCore::RunReadyWatches() {
    std::array<epoll_event, 64> events{};
    const int count = epoll_wait(m_epoll.Get(), events.data(), static_cast<int>(events.size()), 0);
    for (int i = 0; i < count; ++i) Dispatch(events[static_cast<std::size_t>(i)].data.u64);
}

/// `watchId` may have gone since it was reported ready.
void LoopCore::Dispatch(std::uint64_t watchId) {
    const auto found = m_watches.find(watchId);
    if (found == m_watches.end()) return;
    const auto watch = found->second;
    Guarded("descriptor", watch->ready);
}

void LoopCore::Guarded(const std::string& what, const std::function<void()>& callback) {
    try {
        callback();
    } catch (const host::Error& error) {
        m_trace.Skipped(error);
    } catch (const std::exception& error) {
        m_trace.Note(host::FromUtf8(what + ": " + error.what()));
    } catch (...) {
        m_trace.Note(host::FromUtf8(what + ": unknown exception"));
    }
}

}  // namespace kestrum::platform
