#include "adapters/linux/KeyGrab.h"

#include <xcb/xcb_keysyms.h>

#include <utility>

namespace kestrum::platform {

KeyGrab::KeyGrab(LoopBase& loop, std::uint32_t keySymbol, std::function<void()> onTap) : m_onTap(std::move(onTap)) {
    if (!m_events.IsOpen() || !m_questions.IsOpen()) return;
    m_watch = loop.WatchDescriptor(xcb_get_file_descriptor(m_events.Get()), [this] { Drain(); });
    m_held = Grab(keySymbol);
    Drain();  // what came with the answers
}

/// The watch goes before the connection whose descriptor it watches; the grab goes with the connection.
KeyGrab::~KeyGrab() {
    m_watch.reset();
}

bool KeyGrab::Grab(std::uint32_t keySymbol) {
    xcb_key_symbols_t* const symbols = xcb_key_symbols_alloc(m_questions.Get());
    const std::unique_ptr<xcb_keycode_t, FreeReply> codes(xcb_key_symbols_get_keycode(symbols, keySymbol));
    bool held = false;
    for (const xcb_keycode_t* code = codes.get(); code && *code != XCB_NO_SYMBOL; ++code) {
        held = GrabCode(*code) || held;
    }
    xcb_key_symbols_free(symbols);
    return held;
}

/// A grab names the modifiers exactly, so each state of the two locks has its own.
bool KeyGrab::GrabCode(xcb_keycode_t code) {
    constexpr int kCapsLock = XCB_MOD_MASK_LOCK, kNumLock = XCB_MOD_MASK_2;
    bool held = true;
    for (const int locks : {0, kCapsLock, kNumLock, kCapsLock | kNumLock}) {
        const auto cookie = xcb_grab_key_checked(m_events.Get(), 0, m_events.Root(), static_cast<std::uint16_t>(locks),
                                                 code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const XReply<xcb_generic_error_t> error(xcb_request_check(m_events.Get(), cookie));
        held = held && !error;
    }
    return held;
}

bool KeyGrab::IsDown(xcb_keycode_t code) const {
    const XReply<xcb_query_keymap_reply_t> map(
        xcb_query_keymap_reply(m_questions.Get(), xcb_query_keymap(m_questions.Get()), nullptr));
    return map && ((map->keys[code / 8] >> (code % 8)) & 1) != 0;
}

/// A held key repeats as releases, each with a press of the same millisecond behind it.
void KeyGrab::Drain() {
    xcb_key_release_event_t released{};
    bool isReleased = false;
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_events.Get())}) {
        const std::uint8_t type = event->response_type & 0x7F;
        if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) continue;
        const auto& key = reinterpret_cast<const xcb_key_release_event_t&>(*event);
        if (isReleased && key.time != released.time) m_onTap();
        isReleased = type == XCB_KEY_RELEASE;
        released = key;
    }
    if (isReleased && !IsDown(released.detail)) m_onTap();
    if (!m_events.IsOpen()) m_watch.reset();
}

}  // namespace kestrum::platform
