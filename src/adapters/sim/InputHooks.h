// The low-level hooks: a test moves the pointer, presses buttons and keys, and every installed hook hears of it.
#pragma once

#include <vector>

#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Faults.h"
#include "host/IInputHooks.h"

namespace kestrum::sim {

class InputHooks : public host::IInputHooks {
  public:
    InputHooks(Faults& faults, EventLoop& loop) : m_faults(faults), m_loop(loop) {}

    using MouseCallback = std::function<std::int32_t(std::int32_t, std::int32_t, const host::MouseRecord&)>;
    using KeyCallback = std::function<std::int32_t(std::int32_t, std::int32_t, std::uint32_t)>;

    std::unique_ptr<host::IHook> InstallMouseHook(MouseCallback callback) override;
    std::unique_ptr<host::IHook> InstallKeyHook(KeyCallback callback) override;
    std::int32_t CallNextHook(std::int32_t code) override;
    host::Point CursorPosition() override { return cursor; }
    host::Point PhysicalCursorPosition() override { return physicalCursor; }
    host::WindowHandle WindowFromPoint(host::Point) override { return windowAtPoint; }
    host::WindowHandle WindowFromPhysicalPoint(host::Point) override { return windowAtPhysicalPoint; }

    /// Hands a mouse event to every hook now; gives the last hook's answer.
    std::int32_t Mouse(std::int32_t code, std::int32_t message, const host::MouseRecord& record);
    /// Hands a key event to every hook now.
    std::int32_t Key(std::int32_t code, std::int32_t keyCode, std::uint32_t flags);
    /// The user presses and lets go of a key; the hooks hear of it from the next pump.
    void PressKey(std::int32_t keyCode);

    std::size_t MouseHooks() const { return m_mouse.size(); }
    std::size_t KeyHooks() const { return m_key.size(); }

    host::Point cursor, physicalCursor;
    host::WindowHandle windowAtPoint = 0, windowAtPhysicalPoint = 0;
    /// What the next hook in the chain answers, and how often it was asked.
    std::int32_t nextAnswer = 7;
    int chained = 0;

  private:
    template <class Callback>
    class Hook;

    Faults& m_faults;
    EventLoop& m_loop;
    std::vector<std::shared_ptr<MouseCallback>> m_mouse;
    std::vector<std::shared_ptr<KeyCallback>> m_key;
};

}  // namespace kestrum::sim
