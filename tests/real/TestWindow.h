// A window without frame on a test's display, filled with one colour at a time: what a recording is to show.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace kestrum::real {

class TestWindow {
  public:
    TestWindow(const std::string& display, int x, int y, int width, int height)
        : m_connection(xcb_connect(display.c_str(), nullptr)) {
        if (xcb_connection_has_error(m_connection)) throw std::runtime_error("no display " + display);
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_window = xcb_generate_id(m_connection);
        m_gc = xcb_generate_id(m_connection);
        const std::uint32_t overrideRedirect = 1;
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_OVERRIDE_REDIRECT, &overrideRedirect);
        xcb_create_gc(m_connection, m_gc, m_window, 0, nullptr);
        xcb_map_window(m_connection, m_window);
        Sync();
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() { xcb_disconnect(m_connection); }

    /// Fills the window with 0x00RRGGBB; on the screen when it returns.
    void Fill(std::uint32_t colour) {
        xcb_rectangle_t all{0, 0, 0x7FFF, 0x7FFF};
        FillRectangle(colour, all);
    }
    void FillArea(std::uint32_t colour, int x, int y, int width, int height) {
        FillRectangle(colour, {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                               static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)});
    }
    /// Moves the pointer of the display.
    void MovePointer(int x, int y) {
        xcb_warp_pointer(m_connection, XCB_NONE, xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root, 0, 0,
                         0, 0, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
        Sync();
    }

  private:
    void FillRectangle(std::uint32_t colour, xcb_rectangle_t rectangle) {
        xcb_change_gc(m_connection, m_gc, XCB_GC_FOREGROUND, &colour);
        xcb_poly_fill_rectangle(m_connection, m_window, m_gc, 1, &rectangle);
        Sync();
    }
    void Sync() { std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)); }

    xcb_connection_t* m_connection;
    xcb_window_t m_window;
    xcb_gcontext_t m_gc;
};

}  // namespace kestrum::real
