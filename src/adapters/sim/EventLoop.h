// Virtual time. Nothing moves it but a sleep, an advance, and a wait that has nothing due. Events are handled in the
// order of their due time, then of their creation; posted tasks are due at the time of the post.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "host/IEventLoop.h"

namespace kestrum::sim {

class EventLoop : public host::IEventLoop {
  public:
    /// A wait that lasts longer than this in virtual time fails the test.
    static constexpr std::int64_t kLongestWaitMs = 12LL * 3600 * 1000;

    std::int32_t TickCount() override;
    host::DateTime Now() override;
    std::unique_ptr<host::ITimer> StartTimer(const String& name, std::int32_t intervalMs, host::TimerReentry reentry,
                                             std::function<void()> callback) override;
    void Post(std::function<void()> task) override;
    void DoEvents() override;
    void Sleep(std::int32_t ms) override;
    /// Fails the test (sim::Failure) if nothing that could still happen would end the wait.
    void RunUntil(const std::function<bool()>& done) override;

    // --- for tests -------------------------------------------------------------------------------------------------

    /// Milliseconds since the world began.
    std::int64_t Elapsed() const { return m_now; }
    /// Value of the tick when the world began; a test of the wrap sets it near the end.
    void SetFirstTick(std::int32_t tick) { m_firstTick = tick; }
    /// Lets `ms` pass as a program that waits for messages would: pump, jump to the next due time, repeat.
    void Advance(std::int64_t ms);
    /// Does `act` at `ms` milliseconds since the world began (at once if that has passed), from a pump.
    void At(std::int64_t ms, std::function<void()> act);
    /// Does `act` `ms` milliseconds from now, from a pump.
    void After(std::int64_t ms, std::function<void()> act) { At(m_now + ms, std::move(act)); }
    /// Number of running timers with this name.
    int TimerCount(const String& name) const;

  private:
    struct Entry;
    class Handle;

    void Add(std::shared_ptr<Entry> entry);
    std::shared_ptr<Entry> NextDue(std::int64_t limit) const;
    void TakePosted();
    void Fire(const std::shared_ptr<Entry>& entry);
    bool RunOne(std::int64_t limit);
    std::string Waiting() const;

    std::int64_t m_now = 0;
    std::int32_t m_firstTick = 1000000;
    std::uint64_t m_nextNumber = 0;
    std::vector<std::shared_ptr<Entry>> m_entries;
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_posted;
};

}  // namespace kestrum::sim
