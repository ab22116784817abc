#include "adapters/impress/OfficePulse.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

namespace kestrum::impress {

namespace {
constexpr std::uint64_t kWorkTicks = 2;  // of 10 ms; an idle office stays below
}

std::optional<OfficePulse::Sample> OfficePulse::Read() const {
    std::ifstream file("/proc/" + std::to_string(m_pid) + "/stat");
    std::string line;
    if (!std::getline(file, line)) return std::nullopt;
    const auto afterName = line.rfind(')');  // the name may hold blanks and brackets
    if (afterName == std::string::npos) return std::nullopt;
    std::istringstream fields(line.substr(afterName + 1));
    Sample sample{};
    fields >> sample.state;
    std::string skipped;
    for (int i = 0; i < 10; ++i) fields >> skipped;
    std::uint64_t user = 0, system = 0;
    fields >> user >> system;
    sample.ticks = user + system;
    return sample;
}

bool OfficePulse::Working() {
    const auto sample = Read();
    if (!sample) return false;
    const auto used = sample->ticks - m_lastTicks;
    m_lastTicks = sample->ticks;
    return used >= kWorkTicks || sample->state == 'R' || sample->state == 'D';
}

PatientWait::PatientWait(pid_t pid, Patience patience, Clock::time_point now)
    : m_pulse(pid), m_patience(patience), m_lastLook(now) {
    m_pulse.Working();
}

bool PatientWait::Exhausted(Clock::time_point now) {
    constexpr Clock::duration kLongestStep = std::chrono::milliseconds(1500);
    const Clock::duration step = std::min(now - m_lastLook, kLongestStep);
    m_lastLook = now;
    m_watched += step;
    m_still = m_pulse.Working() ? Clock::duration::zero() : m_still + step;
    return m_still >= std::chrono::milliseconds(m_patience.stillMs) ||
           m_watched >= std::chrono::milliseconds(m_patience.busyMs);
}

}  // namespace kestrum::impress
