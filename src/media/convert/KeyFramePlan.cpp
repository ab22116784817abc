#include "media/convert/KeyFramePlan.h"

#include <algorithm>
#include <limits>

namespace kestrum::media {

KeyFramePlan::KeyFramePlan(const std::vector<ConvertEntry>& entries, std::int64_t lengthMs) {
    const std::int64_t end = lengthMs > 0 ? lengthMs : std::numeric_limits<std::int64_t>::max();
    for (const ConvertEntry& entry : entries)
        if (entry.pos >= 0 && entry.pos < end) m_positions.push_back(entry.pos);
    std::sort(m_positions.begin(), m_positions.end());
    m_positions.erase(std::unique(m_positions.begin(), m_positions.end()), m_positions.end());
}

std::vector<std::int64_t> KeyFramePlan::TakeBefore(std::int64_t pos) {
    std::vector<std::int64_t> taken;
    while (m_next < m_positions.size() && m_positions[m_next] < pos) taken.push_back(m_positions[m_next++]);
    return taken;
}

bool KeyFramePlan::TakeAt(std::int64_t pos) {
    if (m_next >= m_positions.size() || m_positions[m_next] != pos) return false;
    ++m_next;
    return true;
}

}  // namespace kestrum::media
