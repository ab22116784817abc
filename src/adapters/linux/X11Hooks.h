// The hooks of the show over raw input: each event becomes the message that the core knows. What hooks answer has no
// effect here: an event cannot be taken away from the program that gets it.
#pragma once

#include "adapters/linux/RawInput.h"

namespace kestrum::platform {

class X11Hooks : public host::IInputHooks {
  public:
    X11Hooks(RawInput& input, X11Connection& display) : m_input(input), m_display(display) {}

    [[nodiscard]] std::unique_ptr<host::IHook> InstallMouseHook(
        std::function<std::int32_t(std::int32_t, std::int32_t, const host::MouseRecord&)> callback) override;
    [[nodiscard]] std::unique_ptr<host::IHook> InstallKeyHook(
        std::function<std::int32_t(std::int32_t, std::int32_t, std::uint32_t)> callback) override;
    std::int32_t CallNextHook(std::int32_t) override { return 0; }
    host::Point CursorPosition() override { return m_display.Pointer(); }
    host::Point PhysicalCursorPosition() override { return m_display.Pointer(); }
    /// The client window of the program there (not a part of it), 0 on the bare desktop.
    host::WindowHandle WindowFromPoint(host::Point point) override;
    host::WindowHandle WindowFromPhysicalPoint(host::Point point) override { return WindowFromPoint(point); }

  private:
    RawInput& m_input;
    X11Connection& m_display;
};

}  // namespace kestrum::platform
