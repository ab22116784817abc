#include "adapters/linux/EventLoop.h"

#include <poll.h>

namespace kestrum::platform {

void EventLoop::DoEvents() {
    m_core.RunDue();
}

void EventLoop::RunUntil(const std::function<bool()>& done) {
    while (!done()) {
        if (m_core.RunOne()) continue;
        pollfd ready{m_core.ReadyDescriptor(), POLLIN, 0};
        poll(&ready, 1, -1);
    }
}

}  // namespace kestrum::platform
