#include "adapters/linux/PointerPad.h"

#include <utility>

namespace kestrum::platform {
namespace {

constexpr std::uint8_t kLeftButton = 1;

}  // namespace

PointerPad::PointerPad(LoopBase& loop, const host::Rect& place, Listener onStroke) : m_onStroke(std::move(onStroke)) {
    if (!m_connection.IsOpen()) return;
    Create(place);
    m_watch = loop.WatchDescriptor(xcb_get_file_descriptor(m_connection.Get()), [this] { Drain(); });
}

/// The watch goes before the connection whose descriptor it watches; the window goes with the connection.
PointerPad::~PointerPad() {
    m_watch.reset();
}

void PointerPad::Create(const host::Rect& place) {
    m_window = xcb_generate_id(m_connection.Get());
    const std::uint32_t values[] = {
        1,  // the window manager keeps its hands off
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_1_MOTION,
    };
    xcb_create_window(m_connection.Get(), XCB_COPY_FROM_PARENT, m_window, m_connection.Root(),
                      static_cast<std::int16_t>(place.left), static_cast<std::int16_t>(place.top),
                      static_cast<std::uint16_t>(place.right - place.left),
                      static_cast<std::uint16_t>(place.bottom - place.top), 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    ShowPencil();
    xcb_map_window(m_connection.Get(), m_window);
    xcb_flush(m_connection.Get());
}

/// The sheet itself may be invisible: the pointer's shape tells that one draws now.
void PointerPad::ShowPencil() {
    constexpr const char kFont[] = "cursor";
    constexpr std::uint16_t kPencil = 86, kFull = 0xFFFF;
    xcb_connection_t* const c = m_connection.Get();
    const xcb_font_t font = xcb_generate_id(c);
    xcb_open_font(c, font, sizeof kFont - 1, kFont);
    const xcb_cursor_t cursor = xcb_generate_id(c);
    xcb_create_glyph_cursor(c, cursor, font, font, kPencil, kPencil + 1, 0, 0, 0, kFull, kFull, kFull);
    xcb_change_window_attributes(c, m_window, XCB_CW_CURSOR, &cursor);
    xcb_free_cursor(c, cursor);
    xcb_close_font(c, font);
}

void PointerPad::Raise() {
    if (m_window == XCB_WINDOW_NONE) return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.Get(), m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(m_connection.Get());
}

void PointerPad::Drain() {
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.Get())}) Read(*event);
    if (!m_connection.IsOpen()) m_watch.reset();  // the server has gone: its descriptor would be ready for ever
}

void PointerPad::Read(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == XCB_MOTION_NOTIFY) {
        const auto& move = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
        m_onStroke(Act::Move, {move.event_x, move.event_y});
    } else if (type == XCB_BUTTON_PRESS || type == XCB_BUTTON_RELEASE) {
        const auto& button = reinterpret_cast<const xcb_button_press_event_t&>(event);
        if (button.detail != kLeftButton) return;
        m_onStroke(type == XCB_BUTTON_PRESS ? Act::Down : Act::Up, {button.event_x, button.event_y});
    }
}

}  // namespace kestrum::platform
