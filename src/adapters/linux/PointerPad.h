// Takes the pointer for itself in a rectangle of the desktop, whatever lies there: an invisible X window above all
// others that hears the left button's strokes and swallows the other buttons. The keyboard stays where it is. A pen or
// a finger moves the pointer, so it draws too.
#pragma once

#include <functional>
#include <memory>

#include "adapters/linux/LoopBase.h"
#include "adapters/linux/X11Connection.h"

namespace kestrum::platform {

class PointerPad {
  public:
    enum class Act { Down, Move, Up };
    /// `at` in pixels from the pad's corner; outside of it too, as long as the button is held.
    using Listener = std::function<void(Act act, host::Point at)>;

    /// `onStroke` comes from a pump. It may pump, but must not end the pad.
    PointerPad(LoopBase& loop, const host::Rect& place, Listener onStroke);
    PointerPad(const PointerPad&) = delete;
    PointerPad& operator=(const PointerPad&) = delete;
    ~PointerPad();

    /// Puts it above all other windows again.
    void Raise();
    /// The X window, 0 without a display.
    std::uint32_t Window() const { return m_window; }

  private:
    void Create(const host::Rect& place);
    void ShowPencil();
    void Drain();
    void Read(const xcb_generic_event_t& event);

    X11Connection m_connection;
    Listener m_onStroke;
    std::unique_ptr<IWatch> m_watch;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

}  // namespace kestrum::platform
