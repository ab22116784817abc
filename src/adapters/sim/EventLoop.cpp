#include "adapters/sim/EventLoop.h"

#include <algorithm>
#include <chrono>

#include "adapters/sim/Failure.h"

namespace kestrum::sim {

/// One thing that will happen: a periodic timer, or with interval 0 a single act.
struct EventLoop::Entry {
    String name;
    std::int64_t due = 0;
    std::uint64_t number = 0;
    std::int32_t interval = 0;
    host::TimerReentry reentry = host::TimerReentry::Entered;
    std::function<void()> callback;
    int depth = 0;
};

class EventLoop::Handle : public host::ITimer {
  public:
    Handle(EventLoop& loop, std::shared_ptr<Entry> entry) : m_loop(loop), m_entry(std::move(entry)) {}
    ~Handle() override {
        auto& entries = m_loop.m_entries;
        entries.erase(std::remove(entries.begin(), entries.end(), m_entry), entries.end());
    }

  private:
    EventLoop& m_loop;
    std::shared_ptr<Entry> m_entry;
};

std::int32_t EventLoop::TickCount() {
    auto first = static_cast<std::uint32_t>(m_firstTick);
    return static_cast<std::int32_t>(first + static_cast<std::uint32_t>(m_now));
}

host::DateTime EventLoop::Now() {
    using namespace std::chrono;
    constexpr sys_days kFirstDay{year(2026) / January / 5};  // in the world's own local time
    const sys_time<milliseconds> moment = kFirstDay + 9h + milliseconds(m_now);
    const sys_days day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss time(moment - day);
    return host::DateTime{static_cast<int>(date.year()),
                          static_cast<int>(static_cast<unsigned>(date.month())),
                          static_cast<int>(static_cast<unsigned>(date.day())),
                          static_cast<int>(time.hours().count()),
                          static_cast<int>(time.minutes().count()),
                          static_cast<int>(time.seconds().count()),
                          static_cast<int>(time.subseconds().count())};
}

void EventLoop::Add(std::shared_ptr<Entry> entry) {
    entry->number = m_nextNumber++;
    m_entries.push_back(std::move(entry));
}

std::unique_ptr<host::ITimer> EventLoop::StartTimer(const String& name, std::int32_t intervalMs,
                                                    host::TimerReentry reentry, std::function<void()> callback) {
    if (intervalMs < 1) throw Failure("a timer with an interval below 1 ms: " + host::ToUtf8(name));
    auto entry = std::make_shared<Entry>();
    entry->name = name;
    entry->due = m_now + intervalMs;
    entry->interval = intervalMs;
    entry->reentry = reentry;
    entry->callback = std::move(callback);
    Add(entry);
    return std::make_unique<Handle>(*this, entry);
}

void EventLoop::Post(std::function<void()> task) {
    std::lock_guard lock(m_mutex);
    m_posted.push_back(std::move(task));
}

void EventLoop::At(std::int64_t ms, std::function<void()> act) {
    auto entry = std::make_shared<Entry>();
    entry->name = u"act";
    entry->due = std::max(ms, m_now);
    entry->callback = std::move(act);
    Add(entry);
}

void EventLoop::TakePosted() {
    std::vector<std::function<void()>> posted;
    {
        std::lock_guard lock(m_mutex);
        posted.swap(m_posted);
    }
    for (auto& task : posted) At(m_now, std::move(task));
}

std::shared_ptr<EventLoop::Entry> EventLoop::NextDue(std::int64_t limit) const {
    std::shared_ptr<Entry> best;
    for (const auto& entry : m_entries) {
        if (entry->due > limit) continue;
        if (!best || entry->due < best->due || (entry->due == best->due && entry->number < best->number)) best = entry;
    }
    return best;
}

void EventLoop::Fire(const std::shared_ptr<Entry>& entry) {
    if (entry->interval == 0) {
        m_entries.erase(std::remove(m_entries.begin(), m_entries.end(), entry), m_entries.end());
    } else {
        // Missed rounds fall together into one, as a system's timer messages do.
        while (entry->due <= m_now) entry->due += entry->interval;
        if (entry->depth > 0 && entry->reentry == host::TimerReentry::Skipped) return;
    }
    struct Depth {
        explicit Depth(int& depth) : value(depth) { ++value; }
        ~Depth() { --value; }
        int& value;
    } depth(entry->depth);
    entry->callback();
}

bool EventLoop::RunOne(std::int64_t limit) {
    TakePosted();
    auto entry = NextDue(limit);
    if (!entry) return false;
    Fire(entry);
    return true;
}

void EventLoop::DoEvents() {
    constexpr int kMostEvents = 100000;
    std::int64_t limit = m_now;
    for (int i = 0; RunOne(limit); ++i) {
        if (i > kMostEvents) throw Failure("DoEvents never came to an end; waiting: " + Waiting());
    }
}

void EventLoop::Sleep(std::int32_t ms) {
    if (ms < 0) throw Failure("a sleep of negative length");
    m_now += ms;
}

void EventLoop::Advance(std::int64_t ms) {
    std::int64_t end = m_now + ms;
    while (true) {
        while (RunOne(m_now)) {
        }
        auto next = NextDue(end);
        if (!next) break;
        m_now = std::max(m_now, next->due);
    }
    m_now = std::max(m_now, end);
}

void EventLoop::RunUntil(const std::function<bool()>& done) {
    std::int64_t end = m_now + kLongestWaitMs;
    while (!done()) {
        if (RunOne(m_now)) continue;
        auto next = NextDue(end);
        if (!next) throw Failure("a wait would never end: nothing is left to happen; waiting: " + Waiting());
        m_now = std::max(m_now, next->due);
    }
}

int EventLoop::TimerCount(const String& name) const {
    return static_cast<int>(std::count_if(m_entries.begin(), m_entries.end(), [&](const auto& entry) {
        return entry->interval > 0 && entry->name == name;
    }));
}

std::string EventLoop::Waiting() const {
    std::string text;
    for (const auto& entry : m_entries) text += host::ToUtf8(entry->name) + "@" + std::to_string(entry->due) + " ";
    return text.empty() ? "nothing" : text;
}

}  // namespace kestrum::sim
