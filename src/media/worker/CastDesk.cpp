#include "media/worker/CastDesk.h"

#include <utility>

#include "media/capture/Clock.h"
#include "media/capture/Screen.h"

namespace kestrum::media {
namespace {

// Less than a request of the program may take.
constexpr std::int64_t kSoonNs = 10 * kNsPerSecond;

/// A cast whose pixels are not those of its monitor is refused at once, and not when the lecture begins.
void RequireUse(const std::shared_ptr<ScreenCast>& cast) {
    constexpr int kSmallest = 2;
    if (const auto place = cast->Place()) Screen("", {place->x, place->y, kSmallest, kSmallest}, cast);
}

}  // namespace

std::shared_ptr<ScreenCast> CastDesk::Open(const KeepWaiting& keepWaiting) {
    const std::lock_guard lock(m_mutex);
    if (m_cast && !m_cast->IsLost()) return m_cast;
    m_cast.reset();
    auto cast = std::make_shared<ScreenCast>(keepWaiting);
    RequireUse(cast);
    m_cast = std::move(cast);
    return m_cast;
}

std::shared_ptr<ScreenCast> CastDesk::OpenSoon() {
    const std::int64_t end = MonotonicNs() + kSoonNs;
    return Open([end] { return MonotonicNs() < end; });
}

void CastDesk::Close() {
    const std::lock_guard lock(m_mutex);
    m_cast.reset();
}

}  // namespace kestrum::media
