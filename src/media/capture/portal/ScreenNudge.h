// A pixel that shows on the screen for a moment. Some desktops send a picture only when something changes, and a cast
// of a screen at rest would begin with nothing.
#pragma once

#include "media/capture/XcbHandle.h"

namespace kestrum::media {

class ScreenNudge {
  public:
    /// On the display of the environment, at this place of its desktop. Without a display nothing happens.
    ScreenNudge(int x, int y);
    ScreenNudge(const ScreenNudge&) = delete;
    ScreenNudge& operator=(const ScreenNudge&) = delete;

    /// Shows the pixel, or takes it away again.
    void Nudge();

  private:
    XcbConnection m_connection;  ///< takes the window with it
    xcb_window_t m_window = 0;
    bool m_isShown = false;
};

}  // namespace kestrum::media
