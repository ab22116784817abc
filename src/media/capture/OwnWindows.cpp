#include "media/capture/OwnWindows.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "media/capture/Clock.h"

namespace kestrum::media {
namespace {

// Pixels: the widest shadow that compositors draw by default, and some more.
constexpr int kShadowReach = 40;
// Past this many parts it is cheaper to take all.
constexpr std::size_t kMostParts = 8;
// A compositor that fades a window out is done by then.
constexpr std::int64_t kPastNs = kNsPerSecond;

Area Grown(const Area& area, int by) {
    return {area.x - by, area.y - by, area.width + 2 * by, area.height + 2 * by};
}

}  // namespace

OwnWindows::OwnWindows(xcb_connection_t* connection, xcb_window_t root, int screenNumber, const Area& area,
                       SharedImage& image)
    : m_area(area), m_stack(connection, root, screenNumber), m_pictures(connection, root, image) {}

void OwnWindows::Handle(const xcb_generic_event_t& event) {
    m_stack.Handle(event);
    m_pictures.Handle(event);
}

Areas OwnWindows::Update(bool again) {
    const bool moved = m_stack.IsStale() || (again && !m_hidden.empty());
    if (!moved && m_past.empty()) return {};
    if (moved) m_stack.Read();
    const Areas before = std::exchange(m_hidden, PlacesNow());
    KeepPast(Subtract(before, m_hidden));
    for (const Past& past : m_past) m_hidden.push_back(past.place);
    if (moved || m_hidden != before) Follow();
    return Subtract(before, m_hidden);
}

Areas OwnWindows::PlacesNow() const {
    Areas places;
    for (const TopLevel& window : m_stack.Windows()) {
        if (!window.isOwn) continue;
        const Area reach = m_stack.HasCompositor() ? Grown(window.place, kShadowReach) : window.place;
        const Area inside = Intersect(Moved(reach, -m_area.x, -m_area.y), {0, 0, m_area.width, m_area.height});
        if (!inside.IsEmpty()) places.push_back(inside);
    }
    return places;
}

/// `gone` was hidden until now: by a window that left, or by the past of one.
void OwnWindows::KeepPast(const Areas& gone) {
    const std::int64_t now = MonotonicNs();
    Areas left = gone;
    for (const Past& past : m_past) left = Subtract(std::move(left), Areas{past.place});
    std::erase_if(m_past, [now](const Past& past) { return past.untilNs <= now; });
    if (!m_stack.HasCompositor()) m_past.clear();
    if (!m_stack.HasCompositor()) return;
    std::transform(left.begin(), left.end(), std::back_inserter(m_past), [now](const Area& place) {
        return Past{place, now + kPastNs};
    });
}

void OwnWindows::Follow() {
    Areas wanted, covered;
    for (const Area& area : m_hidden) wanted.push_back(Moved(area, m_area.x, m_area.y));
    std::vector<TopLevel> others;
    for (const TopLevel& window : m_stack.Windows()) {
        if (window.isOwn) {
            covered.push_back(window.place);
        } else {
            others.push_back(window);
        }
    }
    m_pictures.Follow(others, wanted, covered, m_stack.HasCompositor());
    m_changed = m_hidden;
}

Areas OwnWindows::TakeChanged(bool isScreenDrawn, bool everywhere) {
    if (m_stack.HasCompositor() && !isScreenDrawn && !everywhere) return {};
    for (const Area& drawn : m_pictures.TakeDrawn()) {
        const Areas parts = Intersect(m_hidden, Moved(drawn, -m_area.x, -m_area.y));
        m_changed.insert(m_changed.end(), parts.begin(), parts.end());
    }
    const Areas changed = std::exchange(m_changed, {});
    return everywhere || changed.size() > kMostParts ? m_hidden : changed;
}

std::vector<std::uint32_t> OwnWindows::Compose(const Area& part, const BgraPicture& picture) {
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height));
    for (int y = part.y; y < part.Bottom(); ++y) {
        const auto* line = picture.Line(y) + part.x;
        pixels.insert(pixels.end(), line, line + part.width);
    }
    m_pictures.Paint(Moved(part, m_area.x, m_area.y), pixels);
    return pixels;
}

}  // namespace kestrum::media
