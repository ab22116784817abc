// A window on a test's display, filled with one colour at a time: what a recording is to show, or what it is not.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace kestrum::real {

class TestWindow {
  public:
    enum class Kind {
        Unmanaged,  ///< no window manager frames or places it
        Managed
    };

    TestWindow(const std::string& display, int x, int y, int width, int height, Kind kind = Kind::Unmanaged)
        : m_connection(xcb_connect(display.c_str(), nullptr)), m_width(width), m_height(height) {
        if (xcb_connection_has_error(m_connection)) throw std::runtime_error("no display " + display);
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_window = xcb_generate_id(m_connection);
        m_gc = xcb_generate_id(m_connection);
        const std::uint32_t overrideRedirect = kind == Kind::Unmanaged ? 1 : 0;
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
    void Fill(std::uint32_t colour) { FillArea(colour, 0, 0, m_width, m_height); }
    void FillArea(std::uint32_t colour, int x, int y, int width, int height) {
        FillRectangle(colour, {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                               static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)});
    }
    std::uint32_t Handle() const { return m_window; }
    void Hide() {
        xcb_unmap_window(m_connection, m_window);
        Sync();
    }
    /// Puts the window on the screen; what it showed is gone.
    void Show() {
        xcb_map_window(m_connection, m_window);
        Sync();
    }
    void Move(int x, int y) { Configure(XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, x, y); }
    void Resize(int width, int height) {
        m_width = width;
        m_height = height;
        Configure(XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, width, height);
    }
    void Raise() { Configure(XCB_CONFIG_WINDOW_STACK_MODE, XCB_STACK_MODE_ABOVE, 0); }
    /// Sets a CARDINAL property of the window.
    void SetProperty(const std::string& name, std::uint32_t value) {
        const auto length = static_cast<std::uint16_t>(name.size());
        auto* atom =
            xcb_intern_atom_reply(m_connection, xcb_intern_atom(m_connection, 0, length, name.c_str()), nullptr);
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom->atom, XCB_ATOM_CARDINAL, 32, 1,
                            &value);
        std::free(atom);
        Sync();
    }
    /// Moves the pointer of the display.
    void MovePointer(int x, int y) {
        xcb_warp_pointer(m_connection, XCB_NONE, xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root, 0, 0,
                         0, 0, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
        Sync();
    }

  private:
    void Configure(std::uint16_t what, int first, int second) {
        const std::uint32_t values[] = {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second)};
        xcb_configure_window(m_connection, m_window, what, values);
        Sync();
    }
    void FillRectangle(std::uint32_t colour, xcb_rectangle_t rectangle) {
        xcb_change_gc(m_connection, m_gc, XCB_GC_FOREGROUND, &colour);
        xcb_poly_fill_rectangle(m_connection, m_window, m_gc, 1, &rectangle);
        Sync();
    }
    void Sync() { std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)); }

    xcb_connection_t* m_connection;
    int m_width;
    int m_height;
    xcb_window_t m_window;
    xcb_gcontext_t m_gc;
};

}  // namespace kestrum::real
