#include "adapters/linux/RawInput.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "adapters/linux/VirtualKey.h"

namespace kestrum::platform {
namespace {

/// From this version on raw events come although another program has grabbed the device, as shows and menus do.
constexpr std::uint16_t kMajor = 2, kMinor = 2;

bool IsModifier(std::int32_t virtualKey) {
    constexpr std::int32_t kShift = 16, kAlt = 18, kSuper = 91;
    return (virtualKey >= kShift && virtualKey <= kAlt) || virtualKey == kSuper;
}

bool IsMotion(const std::deque<InputEvent>& queue) {
    return !queue.empty() && queue.back().kind == InputEvent::Kind::Motion;
}

}  // namespace

class RawInput::Handle : public host::IHook {
  public:
    Handle(RawInput& input, std::shared_ptr<Listener> listener)
        : m_input(input), m_listeners(input.m_listeners), m_listener(std::move(listener)) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() override {
        const auto listeners = m_listeners.lock();
        if (!listeners) return;
        listeners->remove(m_listener);
        if (listeners->empty()) m_input.Select(false);
    }

  private:
    RawInput& m_input;
    std::weak_ptr<std::list<std::shared_ptr<Listener>>> m_listeners;  ///< gone: so is the input
    std::shared_ptr<Listener> m_listener;
};

RawInput::RawInput(LoopBase& loop) : m_listeners(std::make_shared<std::list<std::shared_ptr<Listener>>>()) {
    if (!m_connection.IsOpen()) return;
    QueryExtension();
    m_symbols = xcb_key_symbols_alloc(m_connection.Get());
    m_watch = loop.WatchDescriptor(xcb_get_file_descriptor(m_connection.Get()), [this] { Drain(); });
}

RawInput::~RawInput() {
    m_watch.reset();
    if (m_symbols) xcb_key_symbols_free(m_symbols);
}

void RawInput::QueryExtension() {
    const auto* extension = xcb_get_extension_data(m_connection.Get(), &xcb_input_id);
    if (!extension || !extension->present) return;
    const XReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        m_connection.Get(), xcb_input_xi_query_version(m_connection.Get(), kMajor, kMinor), nullptr));
    if (version && version->major_version >= kMajor) m_opcode = extension->major_opcode;
}

std::unique_ptr<host::IHook> RawInput::Listen(Listener listener) {
    if (m_opcode == 0 || !m_connection.IsOpen()) return nullptr;
    auto shared = std::make_shared<Listener>(std::move(listener));
    m_listeners->push_back(shared);
    if (m_listeners->size() == 1) Select(true);
    return std::make_unique<Handle>(*this, std::move(shared));
}

void RawInput::Select(bool on) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t bits;
    } mask{};
    mask.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    mask.head.mask_len = 1;
    if (on) {
        mask.bits = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
                    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE |
                    XCB_INPUT_XI_EVENT_MASK_RAW_MOTION;
    }
    m_modifiers.clear();
    xcb_input_xi_select_events(m_connection.Get(), m_connection.Root(), 1, &mask.head);
    xcb_flush(m_connection.Get());
}

/// Handlers may pump and so come back here: what is read stands in a queue that each call takes from the front.
void RawInput::Drain() {
    do {
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.Get())}) Read(*event);
        if (m_queue.empty()) break;
        const InputEvent next = m_queue.front();
        m_queue.pop_front();
        Deliver(next);
    } while (true);
    if (!m_connection.IsOpen()) m_watch.reset();  // the server has gone: its descriptor would be ready for ever
}

/// The events themselves tell which modifiers are held; the server's present state may be later than the event.
void RawInput::TrackModifiers(const InputEvent& event) {
    if (!IsModifier(event.virtualKey)) return;
    if (event.kind == InputEvent::Kind::KeyDown) {
        m_modifiers.insert(event.virtualKey);
    } else {
        m_modifiers.erase(event.virtualKey);
    }
}

void RawInput::Read(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == XCB_MAPPING_NOTIFY) {
        auto changed = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
        xcb_refresh_keyboard_mapping(m_symbols, &changed);
    }
    if (type != XCB_GE_GENERIC) return;
    const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
    if (raw.extension != m_opcode) return;
    InputEvent input;
    input.time = static_cast<std::int32_t>(raw.time);
    switch (raw.event_type) {
        case XCB_INPUT_RAW_KEY_PRESS:
        case XCB_INPUT_RAW_KEY_RELEASE:
            input.kind =
                raw.event_type == XCB_INPUT_RAW_KEY_PRESS ? InputEvent::Kind::KeyDown : InputEvent::Kind::KeyUp;
            input.virtualKey =
                VirtualKey(xcb_key_symbols_get_keysym(m_symbols, static_cast<xcb_keycode_t>(raw.detail), 0));
            TrackModifiers(input);
            input.modified = !m_modifiers.empty();
            break;
        case XCB_INPUT_RAW_BUTTON_PRESS:
        case XCB_INPUT_RAW_BUTTON_RELEASE:
            input.kind = raw.event_type == XCB_INPUT_RAW_BUTTON_PRESS ? InputEvent::Kind::ButtonDown
                                                                      : InputEvent::Kind::ButtonUp;
            input.button = static_cast<std::int32_t>(raw.detail);
            break;
        case XCB_INPUT_RAW_MOTION:
            if (IsMotion(m_queue)) return;
            break;
        default:
            return;
    }
    m_queue.push_back(input);
}

void RawInput::Deliver(const InputEvent& event) {
    const auto present = *m_listeners;
    for (const auto& listener : present) {
        const auto& now = *m_listeners;
        if (std::find(now.begin(), now.end(), listener) != now.end()) (*listener)(event);
    }
}

}  // namespace kestrum::platform
