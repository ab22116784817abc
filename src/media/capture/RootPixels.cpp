#include "media/capture/RootPixels.h"

#include "media/capture/XcbHandle.h"

namespace kestrum::media {

RootPixels::RootPixels(xcb_connection_t* connection, const xcb_screen_t& screen, const Area& area, SharedImage& image,
                       std::uint8_t damageEvent)
    : m_connection(connection), m_screen(screen), m_area(area), m_image(image), m_damageEvent(damageEvent) {
    m_damage = xcb_generate_id(connection);
    xcb_damage_create(connection, m_damage, screen.root, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    m_drawnRegion = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, m_drawnRegion, 0, nullptr);
}

void RootPixels::Handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != m_damageEvent + XCB_DAMAGE_NOTIFY) return;
    m_wasDrawn |= reinterpret_cast<const xcb_damage_notify_event_t&>(event).damage == m_damage;
}

Areas RootPixels::TakeDrawn() {
    Areas drawn;
    m_wasDrawn = false;
    xcb_damage_subtract(m_connection, m_damage, XCB_NONE, m_drawnRegion);
    const auto cookie = xcb_xfixes_fetch_region(m_connection, m_drawnRegion);
    const auto reply = Own(xcb_xfixes_fetch_region_reply(m_connection, cookie, nullptr));
    if (!reply) return drawn;
    const auto* rectangles = xcb_xfixes_fetch_region_rectangles(reply.get());
    for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i) {
        const auto& r = rectangles[i];
        const Area inside = Intersect({r.x, r.y, r.width, r.height}, m_area);
        if (!inside.IsEmpty()) drawn.push_back(Moved(inside, -m_area.x, -m_area.y));
    }
    return drawn;
}

const std::uint32_t* RootPixels::Read(const Area& part) {
    return m_image.Read(m_screen.root, m_screen.root_depth, Moved(part, m_area.x, m_area.y));
}

}  // namespace kestrum::media
