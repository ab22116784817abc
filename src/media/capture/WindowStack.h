// The top-level windows of the screen from the lowest to the highest, and which of them are the product's own: those
// that carry the property _KESTRUM_OWN_WINDOW (CARDINAL) with the value 1, on themselves or, behind a window manager's
// frame, on a window in them. Decides when the server has to be asked again; as long as no own window is on the screen,
// that is only when a window appears.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "media/capture/Areas.h"

namespace kestrum::media {

struct TopLevel {
    xcb_window_t window = 0;
    Area place;                  ///< with its border, on the desktop
    int border = 0;              ///< pixels
    int depth = 0;               ///< bits a pixel
    bool isManaged = true;       ///< by a window manager
    bool isOwn = false;          ///< never part of a recorded picture
    std::uint8_t opacity = 255;  ///< that it asks of a compositor
};

/// Who puts the windows on the screen.
enum class Stacking {
    kDisplay,  ///< the display, in its order
    kDesktop,  ///< a Wayland desktop, which has windows that no window manager knows above all others
};

class WindowStack {
  public:
    WindowStack(xcb_connection_t* connection, xcb_window_t root, int screenNumber, Stacking stacking);

    /// Takes in an event of the connection; those that say nothing about windows are left alone.
    void Handle(const xcb_generic_event_t& event);
    /// What Windows answers may be out of date.
    bool IsStale() const { return m_stale; }
    /// Asks the server again.
    void Read();

    /// The visible windows, the lowest first.
    const std::vector<TopLevel>& Windows() const { return m_windows; }
    bool HasOwn() const;
    /// Where own windows came by between the last two readings; each place is given out once.
    Areas TakePassed() { return std::exchange(m_passed, {}); }
    /// A program paints the screen from the windows' pictures, with shadows, see-through windows and a delay.
    bool HasCompositor() const { return m_hasCompositor; }

  private:
    struct Mark {
        bool isOwn = false;
        std::uint8_t opacity = 255;
    };

    Mark MarkOf(xcb_window_t window, int depth);
    std::uint32_t Property(xcb_window_t window, xcb_atom_t name, std::uint32_t fallback);
    void NoteMove(const xcb_configure_notify_event_t& event);
    bool IsMark(const xcb_generic_event_t& event) const;

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    const Stacking m_stacking;
    xcb_atom_t m_ownAtom = 0;
    xcb_atom_t m_opacityAtom = 0;
    xcb_atom_t m_compositorAtom = 0;
    std::map<xcb_window_t, Mark> m_marks;
    std::vector<TopLevel> m_windows;
    std::vector<std::pair<xcb_window_t, Area>> m_moves;  ///< since the last reading
    Areas m_passed;
    bool m_stale = true;
    bool m_hasCompositor = false;
};

}  // namespace kestrum::media
