// One connection to the X server, for questions and requests. It receives no events (see RawInput for those), so a
// reply can never push an event out of sight of the loop. Without a display, and once the server has gone, questions
// get empty answers and requests do nothing.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/IMonitors.h"

namespace kestrum::platform {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply of the X server; null if the request failed.
template <class T>
using XReply = std::unique_ptr<T, FreeReply>;

class X11Connection {
  public:
    /// Opens the display that DISPLAY names.
    X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    bool IsOpen() const;
    xcb_connection_t* Get() const { return m_connection; }
    /// The first screen; null without a display.
    const xcb_screen_t* Screen() const { return m_screen; }
    xcb_window_t Root() const { return m_screen ? m_screen->root : xcb_window_t{XCB_WINDOW_NONE}; }

    xcb_atom_t Atom(const std::string& name);
    /// Name of an atom, empty if there is none.
    std::string AtomName(xcb_atom_t atom) const;
    /// Bytes of a property, empty if the window has none.
    std::string Property(xcb_window_t window, const std::string& name);
    /// 32-bit numbers of a property.
    std::vector<std::uint32_t> Numbers(xcb_window_t window, const std::string& name);
    /// Pointer position on the root window.
    host::Point Pointer() const;
    /// Sends what is waiting. Drops the server's complaints about earlier requests (a window that went meanwhile).
    void Flush() const;

  private:
    xcb_connection_t* m_connection = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    std::map<std::string, xcb_atom_t> m_atoms;
};

}  // namespace kestrum::platform
