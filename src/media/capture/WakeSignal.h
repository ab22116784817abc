// A descriptor that one thread raises to end the poll of another.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

namespace kestrum::media {

class WakeSignal {
  public:
    WakeSignal() : m_fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~WakeSignal() { close(m_fd); }
    WakeSignal(const WakeSignal&) = delete;
    WakeSignal& operator=(const WakeSignal&) = delete;

    int FileDescriptor() const { return m_fd; }
    void Raise() {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = write(m_fd, &one, sizeof one);
    }
    void Clear() {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto taken = read(m_fd, &count, sizeof count);
    }

  private:
    const int m_fd;
};

}  // namespace kestrum::media
