#include "media/capture/portal/ScreenNudge.h"

#include <cstdint>
#include <cstring>

namespace kestrum::media {
namespace {

/// The pixel belongs to no recording.
void MarkAsOwn(xcb_connection_t* connection, xcb_window_t window) {
    constexpr const char* kMark = "_KESTRUM_OWN_WINDOW";
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(kMark)), kMark);
    const auto atom = Own(xcb_intern_atom_reply(connection, cookie, nullptr));
    const std::uint32_t own = 1;
    if (!atom) return;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom->atom, XCB_ATOM_CARDINAL, 32, 1, &own);
}

}  // namespace

ScreenNudge::ScreenNudge(int x, int y) : m_connection(xcb_connect(nullptr, nullptr)) {
    xcb_connection_t* c = m_connection.get();
    if (xcb_connection_has_error(c)) return;
    const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    m_window = xcb_generate_id(c);
    const std::uint32_t values[] = {screen.black_pixel, 1};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, m_window, screen.root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    MarkAsOwn(c, m_window);
}

void ScreenNudge::Nudge() {
    if (m_window == 0) return;
    m_isShown = !m_isShown;
    if (m_isShown) {
        xcb_map_window(m_connection.get(), m_window);
    } else {
        xcb_unmap_window(m_connection.get(), m_window);
    }
    xcb_flush(m_connection.get());
}

}  // namespace kestrum::media
