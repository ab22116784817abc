#include "media/capture/WindowPictures.h"

#include <xcb/composite.h>
#include <xcb/damage.h>

#include <algorithm>
#include <utility>

#include "media/capture/Blend.h"
#include "media/capture/XcbHandle.h"

namespace kestrum::media {
namespace {

constexpr std::uint32_t kColour = 0x00FFFFFF, kOpaque = 0xFF000000;

bool HasComposite(xcb_connection_t* connection) {
    const auto* data = xcb_get_extension_data(connection, &xcb_composite_id);
    if (!data || !data->present) return false;
    const auto cookie = xcb_composite_query_version(connection, 0, 4);
    const auto version = Own(xcb_composite_query_version_reply(connection, cookie, nullptr));
    return version && (version->major_version > 0 || version->minor_version >= 2);
}

bool Touches(const TopLevel& window, const Areas& areas) {
    return !Intersect(areas, window.place).empty();
}

Areas PlacesIn(const xcb_xfixes_fetch_region_reply_t& region, const TopLevel& window) {
    const int x = window.place.x + window.border, y = window.place.y + window.border;
    Areas areas;
    const auto* rectangles = xcb_xfixes_fetch_region_rectangles(&region);
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(&region); ++i) {
        const auto& r = rectangles[i];
        areas.push_back(Moved({r.x, r.y, r.width, r.height}, x, y));
    }
    return areas;
}

std::size_t Offset(const Area& part, int x, int y) {
    return static_cast<std::size_t>(y - part.y) * static_cast<std::size_t>(part.width) +
           static_cast<std::size_t>(x - part.x);
}

void CopyPiece(const std::vector<std::uint32_t>& from, std::vector<std::uint32_t>& to, const Area& part,
               const Area& piece) {
    for (int y = piece.y; y < piece.Bottom(); ++y) {
        const auto at = static_cast<std::ptrdiff_t>(Offset(part, piece.x, y));
        std::copy_n(from.begin() + at, piece.width, to.begin() + at);
    }
}

}  // namespace

WindowPictures::WindowPictures(xcb_connection_t* connection, xcb_window_t root, SharedImage& image)
    : m_connection(connection), m_root(root), m_image(image), m_isAvailable(HasComposite(connection)) {
    m_region = xcb_generate_id(m_connection);
    xcb_xfixes_create_region(m_connection, m_region, 0, nullptr);
    m_damageEvent = xcb_get_extension_data(m_connection, &xcb_damage_id)->first_event;
}

WindowPictures::~WindowPictures() {
    End();
    xcb_xfixes_destroy_region(m_connection, m_region);
}

void WindowPictures::Follow(const std::vector<TopLevel>& windows, const Areas& wanted, const Areas& covered,
                            bool isBlended) {
    if (!m_isAvailable) return;
    m_isBlended = isBlended;
    if (wanted.empty()) return End();
    std::vector<Kept> before = std::exchange(m_kept, {});
    for (const TopLevel& window : windows) {
        if (!Touches(window, wanted)) continue;
        const auto same = std::find_if(before.begin(), before.end(),
                                       [&](const Kept& kept) { return kept.window.window == window.window; });
        m_kept.push_back(same == before.end() ? Kept{} : std::exchange(*same, {}));
        m_kept.back().MoveTo(window);
    }
    for (const Kept& gone : before) Drop(gone);
    if (!m_isActive) Begin(covered);
    for (Kept& kept : m_kept) Refresh(kept);
}

/// Other programs may have asked for the same before: then nothing is unknown.
void WindowPictures::Begin(const Areas& covered) {
    for (Kept& kept : m_kept) {
        if (!IsKeptApart(kept.window.window)) kept.unknown = Intersect(covered, kept.window.place);
    }
    xcb_composite_redirect_subwindows(m_connection, m_root, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    m_isActive = true;
}

void WindowPictures::End() {
    for (const Kept& kept : m_kept) Drop(kept);
    m_kept.clear();
    m_wasDrawn = false;
    if (std::exchange(m_isActive, false)) {
        xcb_composite_unredirect_subwindows(m_connection, m_root, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        xcb_flush(m_connection);
    }
}

bool WindowPictures::IsKeptApart(xcb_window_t window) {
    const xcb_pixmap_t picture = xcb_generate_id(m_connection);
    const auto error =
        Own(xcb_request_check(m_connection, xcb_composite_name_window_pixmap_checked(m_connection, window, picture)));
    if (error) return false;
    xcb_free_pixmap(m_connection, picture);
    return true;
}

void WindowPictures::Drop(const Kept& kept) {
    if (kept.picture) xcb_free_pixmap(m_connection, kept.picture);
    if (kept.damage) xcb_damage_destroy(m_connection, kept.damage);
}

void WindowPictures::Refresh(Kept& kept) {
    TakePicture(kept);
    if (!kept.damage) WatchDrawing(kept);
    xcb_xfixes_region_t shape = xcb_generate_id(m_connection);
    xcb_xfixes_create_region_from_window(m_connection, shape, kept.window.window, XCB_SHAPE_SK_BOUNDING);
    const auto reply =
        Own(xcb_xfixes_fetch_region_reply(m_connection, xcb_xfixes_fetch_region(m_connection, shape), nullptr));
    kept.shape = reply ? PlacesIn(*reply, kept.window) : Areas{};
    xcb_xfixes_destroy_region(m_connection, shape);
}

/// A window has a new picture after each change of its size and each time that it appears; in a Wayland session after
/// each drawing.
void WindowPictures::TakePicture(Kept& kept) {
    if (kept.picture) xcb_free_pixmap(m_connection, kept.picture);
    kept.picture = xcb_generate_id(m_connection);
    xcb_composite_name_window_pixmap(m_connection, kept.window.window, kept.picture);
}

/// A new watch begins with all of the window as drawn, which says nothing.
void WindowPictures::WatchDrawing(Kept& kept) {
    kept.damage = xcb_generate_id(m_connection);
    xcb_damage_create(m_connection, kept.damage, kept.window.window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_damage_subtract(m_connection, kept.damage, XCB_NONE, XCB_NONE);
}

void WindowPictures::Handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != m_damageEvent + XCB_DAMAGE_NOTIFY) return;
    const auto damage = reinterpret_cast<const xcb_damage_notify_event_t&>(event).damage;
    m_wasDrawn |= std::any_of(m_kept.begin(), m_kept.end(), [&](const Kept& kept) { return kept.damage == damage; });
}

Areas WindowPictures::TakeDrawn() {
    Areas all;
    if (!std::exchange(m_wasDrawn, false)) return all;
    for (Kept& kept : m_kept) {
        xcb_damage_subtract(m_connection, kept.damage, XCB_NONE, m_region);
        const auto cookie = xcb_xfixes_fetch_region(m_connection, m_region);
        const auto region = Own(xcb_xfixes_fetch_region_reply(m_connection, cookie, nullptr));
        if (!region) continue;
        const Areas drawn = PlacesIn(*region, kept.window);
        kept.unknown = Subtract(std::move(kept.unknown), drawn);
        all.insert(all.end(), drawn.begin(), drawn.end());
    }
    return all;
}

void WindowPictures::Kept::MoveTo(const TopLevel& now) {
    for (Area& area : unknown) area = Moved(area, now.place.x - window.place.x, now.place.y - window.place.y);
    window = now;
}

bool WindowPictures::Kept::Hides(const Area& part, bool isBlended) const {
    if (isBlended && (window.depth == 32 || window.opacity < 255)) return false;
    return Intersect(unknown, part).empty() && Subtract({part}, shape).empty();
}

void WindowPictures::Paint(const Area& part, std::vector<std::uint32_t>& pixels) {
    const auto before = pixels;
    auto first = m_kept.begin();
    for (auto it = m_kept.begin(); it != m_kept.end(); ++it) {
        if (it->Hides(part, m_isBlended)) first = it;
    }
    for (auto it = first; it != m_kept.end(); ++it) {
        TakePicture(*it);
        PaintWindow(*it, part, pixels);
        for (const Area& piece : Intersect(it->unknown, part)) CopyPiece(before, pixels, part, piece);
    }
}

void WindowPictures::PaintWindow(const Kept& kept, const Area& part, std::vector<std::uint32_t>& pixels) {
    const Area shown = Intersect(kept.window.place, part);
    if (shown.IsEmpty()) return;
    const std::uint32_t* source =
        m_image.Read(kept.picture, kept.window.depth, Moved(shown, -kept.window.place.x, -kept.window.place.y));
    if (!source) return;
    const std::uint32_t alpha = m_isBlended && kept.window.depth == 32 ? 0 : kOpaque;
    for (const Area& piece : Intersect(kept.shape, shown)) {
        for (int y = piece.y; y < piece.Bottom(); ++y) {
            const auto* from = source + Offset(shown, piece.x, y);
            auto* to = pixels.data() + Offset(part, piece.x, y);
            for (int x = 0; x < piece.width; ++x) {
                const std::uint32_t over = from[x] | alpha;
                to[x] = m_isBlended ? Blend(Faded(over, kept.window.opacity), to[x]) : over & kColour;
            }
        }
    }
}

}  // namespace kestrum::media
