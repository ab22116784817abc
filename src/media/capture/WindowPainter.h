// Pictures drawn into a window of another program. Decides that nothing that happens to that window can harm the one
// who draws: a window that has gone, or is of a kind that cannot be drawn into, is simply not drawn into any more.
#pragma once

#include <cstdint>
#include <string>

#include "media/capture/Picture.h"
#include "media/capture/XcbHandle.h"

namespace kestrum::media {

class WindowPainter {
  public:
    /// `display`: empty is the environment's. Throws CaptureError (kNoDisplay) if there is no such window, or its
    /// colours are not of 24 bits.
    WindowPainter(const std::string& display, std::uint32_t window);

    /// Draws into the window's upper left corner; false once the window or its display has gone.
    bool Draw(const BgraPicture& picture);
    /// Draws black where the last picture stands.
    void Clear();

  private:
    bool IsGone();

    XcbConnection m_connection;
    const xcb_window_t m_window;
    xcb_gcontext_t m_context = 0;
    std::uint8_t m_depth = 0;
    xcb_rectangle_t m_drawn{};
    bool m_isGone = false;
};

}  // namespace kestrum::media
