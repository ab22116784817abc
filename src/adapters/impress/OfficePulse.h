// Whether an office that does not answer is at work or stuck. A slide that takes seconds to draw burns processor time;
// a deadlocked or stopped office does not.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>

namespace kestrum::impress {

class OfficePulse {
  public:
    /// Watches process `pid`; 0 means unknown, such an office never counts as working.
    explicit OfficePulse(pid_t pid) : m_pid(pid) {}

    /// True if the process has used processor time (20 ms or more) since the last question, or its main thread is
    /// ready to run or waits for a disk.
    bool Working();

  private:
    struct Sample {
        char state;
        std::uint64_t ticks;
    };
    std::optional<Sample> Read() const;

    pid_t m_pid;
    std::uint64_t m_lastTicks = 0;
};

/// How long a call may take.
struct Patience {
    int stillMs = 2000;  ///< an office that neither answers nor works
    int busyMs = 20000;  ///< one that works all the time
};

/// One wait for an office. Only the time in which somebody watched counts: a machine that stood still, or a program
/// that was stopped together with its office, is no reason to give an office up.
class PatientWait {
  public:
    using Clock = std::chrono::steady_clock;

    PatientWait(pid_t pid, Patience patience) : PatientWait(pid, patience, Clock::now()) {}
    PatientWait(pid_t pid, Patience patience, Clock::time_point now);
    /// True when the office has had its time. Ask every second or more often.
    bool Exhausted() { return Exhausted(Clock::now()); }
    bool Exhausted(Clock::time_point now);

  private:
    OfficePulse m_pulse;
    Patience m_patience;
    Clock::time_point m_lastLook;
    Clock::duration m_watched{}, m_still{};
};

}  // namespace kestrum::impress
