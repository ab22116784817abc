#include "adapters/linux/X11Hooks.h"

#include <utility>

namespace kestrum::platform {
namespace {

constexpr std::int32_t kMove = 512, kWheel = 522;
constexpr std::int32_t kLeftDown = 513, kLeftUp = 514, kRightDown = 516, kRightUp = 517, kMiddleDown = 519,
                       kMiddleUp = 520;
constexpr std::int32_t kWheelStep = 120 * 65536;
constexpr std::uint32_t kGoingUp = 0x80000000;

/// The message of a mouse event, 0 for one that has none (further buttons, the wheel's second half).
std::int32_t MessageOf(const InputEvent& event) {
    if (event.kind == InputEvent::Kind::Motion) return kMove;
    const bool down = event.kind == InputEvent::Kind::ButtonDown;
    switch (event.button) {
        case 1:
            return down ? kLeftDown : kLeftUp;
        case 2:
            return down ? kMiddleDown : kMiddleUp;
        case 3:
            return down ? kRightDown : kRightUp;
        case 4:
        case 5:
            return down ? kWheel : 0;
        default:
            return 0;
    }
}

bool IsKey(const InputEvent& event) {
    return event.kind == InputEvent::Kind::KeyDown || event.kind == InputEvent::Kind::KeyUp;
}

}  // namespace

std::unique_ptr<host::IHook> X11Hooks::InstallMouseHook(
    std::function<std::int32_t(std::int32_t, std::int32_t, const host::MouseRecord&)> callback) {
    return m_input.Listen([this, callback = std::move(callback)](const InputEvent& event) {
        if (IsKey(event)) return;
        const std::int32_t message = MessageOf(event);
        if (message == 0) return;
        const host::Point at = m_display.Pointer();
        const std::int32_t turn = event.button == 4 ? kWheelStep : -kWheelStep;
        callback(0, message, {at.x, at.y, message == kWheel ? turn : 0, 0, event.time, 0});
    });
}

std::unique_ptr<host::IHook> X11Hooks::InstallKeyHook(
    std::function<std::int32_t(std::int32_t, std::int32_t, std::uint32_t)> callback) {
    return m_input.Listen([callback = std::move(callback)](const InputEvent& event) {
        if (!IsKey(event)) return;
        callback(0, event.virtualKey, event.kind == InputEvent::Kind::KeyUp ? kGoingUp : 0);
    });
}

host::WindowHandle X11Hooks::WindowFromPoint(host::Point point) {
    xcb_connection_t* const connection = m_display.Get();
    const xcb_window_t root = m_display.Root();
    xcb_window_t topLevel = XCB_WINDOW_NONE;
    for (xcb_window_t at = root; m_display.IsOpen();) {
        const XReply<xcb_translate_coordinates_reply_t> reply(xcb_translate_coordinates_reply(
            connection,
            xcb_translate_coordinates(connection, root, at, static_cast<std::int16_t>(point.x),
                                      static_cast<std::int16_t>(point.y)),
            nullptr));
        if (!reply || reply->child == XCB_WINDOW_NONE) break;
        at = reply->child;
        if (topLevel == XCB_WINDOW_NONE) topLevel = at;
        // A window manager marks the program's own window inside the frame that it draws.
        if (!m_display.Property(at, "WM_STATE").empty()) return at;
    }
    return topLevel;
}

}  // namespace kestrum::platform
