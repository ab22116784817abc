// Where on the package's time line a picture lies. Decides that every position is given once and in rising order, and
// that a key frame asked for keeps the position it was promised, whatever picture is under way.
//
// Thread-safe.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "media/capture/Clock.h"

namespace kestrum::media {

class PositionClock {
  public:
    /// `startMs`: position of the first picture, taken at `startNs` of the monotonic clock.
    PositionClock(std::int64_t startMs, std::int64_t startNs)
        : m_startMs(startMs), m_startNs(startNs), m_last(startMs) {}

    /// Promises a key frame for now.
    std::int64_t PromiseKey(std::int64_t nowNs) {
        const std::lock_guard lock(m_mutex);
        m_promised.push_back(Next(nowNs));
        return m_last;
    }
    /// The oldest promise not yet kept, which is taken off the list.
    std::optional<std::int64_t> TakePromise() {
        const std::lock_guard lock(m_mutex);
        if (m_promised.empty()) return std::nullopt;
        const std::int64_t position = m_promised.front();
        m_promised.pop_front();
        return position;
    }
    /// The position of a picture taken now; none while a promise waits, which goes first.
    std::optional<std::int64_t> Stamp(std::int64_t nowNs) {
        const std::lock_guard lock(m_mutex);
        if (!m_promised.empty()) return std::nullopt;
        return Next(nowNs);
    }
    /// The time line's position at a moment of the monotonic clock.
    std::int64_t PositionAt(std::int64_t ns) const { return m_startMs + (ns - m_startNs) / kNsPerMs; }
    /// The last position given.
    std::int64_t Last() const {
        const std::lock_guard lock(m_mutex);
        return m_last;
    }

  private:
    std::int64_t Next(std::int64_t nowNs) { return m_last = std::max(PositionAt(nowNs), m_last + 1); }

    const std::int64_t m_startMs;
    const std::int64_t m_startNs;
    mutable std::mutex m_mutex;
    std::int64_t m_last;
    std::deque<std::int64_t> m_promised;
};

}  // namespace kestrum::media
