// What the user does with keyboard and mouse on the whole display, whichever program has the focus: raw events of the X
// input extension, on a connection of their own that the loop watches. They are asked for while somebody listens.
#pragma once

#include <xcb/xcb_keysyms.h>

#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <set>

#include "adapters/linux/LoopBase.h"
#include "adapters/linux/X11Connection.h"
#include "host/IInputHooks.h"

namespace kestrum::platform {

struct InputEvent {
    enum class Kind { KeyDown, KeyUp, ButtonDown, ButtonUp, Motion };
    Kind kind = Kind::Motion;
    std::int32_t virtualKey = 0;  ///< of a key; 0 for one without a code
    std::int32_t button = 0;      ///< 1 left, 2 middle, 3 right, 4 wheel up, 5 wheel down
    bool modified = false;        ///< Shift, Control, Alt or Super was held
    std::int32_t time = 0;        ///< the server's milliseconds
};

class RawInput {
  public:
    explicit RawInput(LoopBase& loop);
    RawInput(const RawInput&) = delete;
    RawInput& operator=(const RawInput&) = delete;
    ~RawInput();

    /// Calls `listener` for each event, from a pump, until the handle goes (which may be inside a call). Moves that
    /// follow each other come as one. Null without a display or without the extension.
    [[nodiscard]] std::unique_ptr<host::IHook> Listen(std::function<void(const InputEvent&)> listener);

  private:
    using Listener = std::function<void(const InputEvent&)>;
    class Handle;

    void QueryExtension();
    void Select(bool on);
    void Drain();
    void Read(const xcb_generic_event_t& event);
    void Deliver(const InputEvent& event);
    void TrackModifiers(const InputEvent& event);

    X11Connection m_connection;
    std::shared_ptr<std::list<std::shared_ptr<Listener>>> m_listeners;
    std::deque<InputEvent> m_queue;
    xcb_key_symbols_t* m_symbols = nullptr;
    std::set<std::int32_t> m_modifiers;  ///< keys held
    std::uint8_t m_opcode = 0;           ///< of the input extension, 0 if there is none
    std::unique_ptr<IWatch> m_watch;
};

}  // namespace kestrum::platform
