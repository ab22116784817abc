// Takes one key away from every other program, whichever has the keyboard, until it goes.
#pragma once

#include <functional>
#include <memory>

#include "adapters/linux/LoopBase.h"
#include "adapters/linux/X11Connection.h"

namespace kestrum::platform {

class KeyGrab {
  public:
    /// `keySymbol` as X names keys, pressed without a modifier (the locks do not count). `onTap` comes from a pump when
    /// the key is let go, so that nothing of a held key is left for the program below. It must not end the grab.
    KeyGrab(LoopBase& loop, std::uint32_t keySymbol, std::function<void()> onTap);
    KeyGrab(const KeyGrab&) = delete;
    KeyGrab& operator=(const KeyGrab&) = delete;
    ~KeyGrab();

    /// False if another program has taken the key already; it stays that one's then.
    bool IsHeld() const { return m_held; }

  private:
    bool Grab(std::uint32_t keySymbol);
    bool GrabCode(xcb_keycode_t code);
    bool IsDown(xcb_keycode_t code) const;
    void Drain();

    X11Connection m_events, m_questions;  ///< the answer to a question must not push an event out of the loop's sight
    std::function<void()> m_onTap;
    std::unique_ptr<IWatch> m_watch;
    bool m_held = false;
};

}  // namespace kestrum::platform
