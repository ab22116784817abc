#include "adapters/linux/LoopBase.h"

#include <time.h>

#include <cerrno>
#include <utility>

#include "adapters/linux/LocalTime.h"

namespace kestrum::platform {

std::int32_t LoopBase::TickCount() {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(LoopCore::BootTime() / 1'000'000));
}

host::DateTime LoopBase::Now() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return LocalTime(now);
}

std::unique_ptr<host::ITimer> LoopBase::StartTimer(const String& name, std::int32_t intervalMs,
                                                   host::TimerReentry reentry, std::function<void()> callback) {
    return m_core.StartTimer(name, intervalMs, reentry, std::move(callback));
}

void LoopBase::Post(std::function<void()> task) {
    m_core.Post(std::move(task));
}

void LoopBase::Sleep(std::int32_t ms) {
    if (ms <= 0) return;
    const std::int64_t end = LoopCore::BootTime() + static_cast<std::int64_t>(ms) * 1'000'000;
    timespec until{};
    until.tv_sec = end / 1'000'000'000;
    until.tv_nsec = end % 1'000'000'000;
    while (clock_nanosleep(CLOCK_BOOTTIME, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
}

std::unique_ptr<IWatch> LoopBase::WatchDescriptor(int fd, std::function<void()> ready) {
    return m_core.WatchDescriptor(fd, std::move(ready));
}

}  // namespace kestrum::platform
