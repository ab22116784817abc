#include "adapters/impress/OfficePulse.h"

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

PatientWait::PatientWait(pid_t pid, Patience patience) : m_pulse(pid), m_patience(patience) {
    m_pulse.Working();
}

bool PatientWait::Exhausted() {
    const auto now = Clock::now();
    if (m_pulse.Working()) m_lastSign = now;
    return now - m_lastSign >= std::chrono::milliseconds(m_patience.stillMs) ||
           now - m_begin >= std::chrono::milliseconds(m_patience.busyMs);
}

}  // namespace kestrum::impress
