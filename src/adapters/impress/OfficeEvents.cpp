#include "adapters/impress/OfficeEvents.h"

namespace kestrum::impress {

void OfficeEvents::Push(OfficeEvent event) {
    std::lock_guard lock(m_mutex);
    if (m_closed) return;
    m_events.push_back(std::move(event));
    m_changed.notify_all();
    m_arrived();
}

std::optional<OfficeEvent> OfficeEvents::Pop() {
    std::lock_guard lock(m_mutex);
    if (m_events.empty()) return std::nullopt;
    OfficeEvent event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

bool OfficeEvents::WaitFor(std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, limit, [&] { return !m_events.empty(); });
}

void OfficeEvents::Close() {
    std::lock_guard lock(m_mutex);
    m_closed = true;
    m_events.clear();
}

}  // namespace kestrum::impress
