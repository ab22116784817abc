// Watches the keyboard through the system's low-level hook: one event, a key that goes up. One hooker a window.
#pragma once

#include <functional>
#include <memory>

#include "recording/Context.h"

namespace kestrum {

class CHooker {
  public:
    explicit CHooker(const recording::Context& c) : m_c(c) {}
    ~CHooker() { StopKeyHooking(); }
    CHooker(const CHooker&) = delete;
    CHooker& operator=(const CHooker&) = delete;

    /// Hooks the keyboard for `window`. Nothing happens if it is no window or already has a hooker.
    void StartKeyHooking(host::WindowHandle window);
    void StopKeyHooking();

    /// Gets the low 8 bits of the key code. Must be short: the system drops a hook that stalls.
    std::function<void(std::int32_t)> OnSystemKeyUp;

    /// What the hook calls (modHook). The result is the hook's answer; it always chains.
    std::int32_t HandleKey(std::int32_t code, std::int32_t keyCode, std::uint32_t flags);

  private:
    recording::Context m_c;
    std::unique_ptr<host::IHook> m_hook;
    std::int32_t m_lastKey = 0;
};

}  // namespace kestrum
