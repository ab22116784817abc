// System-wide input as seen by low-level hooks: what the user types and clicks while another window has the focus.
// Callbacks come on the core's thread from a pump.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "host/IMonitors.h"
#include "host/String.h"

namespace kestrum::host {

using WindowHandle = std::uint64_t;

/// The low-level mouse record.
struct MouseRecord {
    std::int32_t x = 0, y = 0, mouseData = 0, flags = 0, time = 0, extraInfo = 0;
};

/// An installed hook; destroying it removes the hook.
class IHook {
  public:
    virtual ~IHook() = default;
};

class IInputHooks {
  public:
    virtual ~IInputHooks() = default;
    /// `callback(code, message, record)` for every mouse event; its result is the hook's answer. Null if refused.
    [[nodiscard]] virtual std::unique_ptr<IHook> InstallMouseHook(
        std::function<std::int32_t(std::int32_t, std::int32_t, const MouseRecord&)> callback) = 0;
    /// `callback(code, keyCode, flags)`: bit 31 of `flags` is set when the key goes up. Null if refused.
    [[nodiscard]] virtual std::unique_ptr<IHook> InstallKeyHook(
        std::function<std::int32_t(std::int32_t, std::int32_t, std::uint32_t)> callback) = 0;
    /// Hands the event to the next hook in the chain and gives its answer.
    virtual std::int32_t CallNextHook(std::int32_t code) = 0;
    virtual Point CursorPosition() = 0;
    virtual Point PhysicalCursorPosition() = 0;
    virtual WindowHandle WindowFromPoint(Point point) = 0;
    virtual WindowHandle WindowFromPhysicalPoint(Point point) = 0;
};

}  // namespace kestrum::host
