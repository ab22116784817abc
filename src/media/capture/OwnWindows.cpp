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
// A window that is dragged leaves more old places than are worth telling apart.
constexpr std::size_t kMostPast = 32;
// A compositor that fades a window out is done by then.
constexpr std::int64_t kPastNs = kNsPerSecond;

Area Grown(const Area& area, int by) {
    return {area.x - by, area.y - by, area.width + 2 * by, area.height + 2 * by};
}

void Append(Areas& areas, const Areas& more) {
    areas.insert(areas.end(), more.begin(), more.end());
}

}  // namespace

OwnWindows::OwnWindows(xcb_connection_t* connection, xcb_window_t root, int screenNumber, Stacking stacking,
                       const Area& area, SharedImage& image)
    : m_area(area), m_stack(connection, root, screenNumber, stacking), m_pictures(connection, root, image) {}

void OwnWindows::Handle(const xcb_generic_event_t& event) {
    m_stack.Handle(event);
    m_pictures.Handle(event);
}

Areas OwnWindows::Update(bool again) {
    const bool moved = m_stack.IsStale() || (again && !m_hidden.empty());
    if (!moved && m_past.empty()) return {};
    if (moved) FindPlaces();
    ForgetPast();
    const Areas before = std::exchange(m_hidden, m_places);
    for (const Past& past : m_past) m_hidden.push_back(past.place);
    if (moved || m_hidden != before) Follow();
    return Subtract(before, m_hidden);
}

void OwnWindows::FindPlaces() {
    m_stack.Read();
    Areas past = std::exchange(m_places, {});
    for (const TopLevel& window : m_stack.Windows()) {
        if (window.isOwn) Append(m_places, InArea(window.place));
    }
    for (const Area& place : m_stack.TakePassed()) Append(past, InArea(place));
    KeepPast(Subtract(std::move(past), m_places));
}

/// What a window at this place hides of the captured rectangle: one area or none.
Areas OwnWindows::InArea(const Area& window) const {
    const Area reach = m_stack.HasCompositor() ? Grown(window, kShadowReach) : window;
    return Intersect({{0, 0, m_area.width, m_area.height}}, Moved(reach, -m_area.x, -m_area.y));
}

void OwnWindows::KeepPast(const Areas& gone) {
    if (gone.empty()) return;
    std::erase_if(m_past, [&gone](const Past& past) { return Subtract({past.place}, gone).empty(); });
    const std::int64_t until = MonotonicNs() + kPastNs;
    std::transform(gone.begin(), gone.end(), std::back_inserter(m_past), [until](const Area& place) {
        return Past{place, until};
    });
    if (m_past.size() <= kMostPast) return;
    Area all;
    for (const Past& past : m_past) all = Unite(all, past.place);
    m_past = {{all, until}};
}

void OwnWindows::ForgetPast() {
    if (!m_stack.HasCompositor()) m_past.clear();
    std::erase_if(m_past, [now = MonotonicNs()](const Past& past) { return past.untilNs <= now; });
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
        Append(m_changed, parts);
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
