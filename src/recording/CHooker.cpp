#include "recording/CHooker.h"

#include "recording/modHook.h"

namespace kestrum {

void CHooker::StartKeyHooking(host::WindowHandle window) {
    host::IWindows& windows = m_c.host.windows;
    if (!windows.IsWindow(window)) return;
    m_c.recording.keyHookWindow = window;
    if (windows.Property(window, modHook::kKeyProperty) != 0) return;
    if (!windows.SetProperty(window, modHook::kKeyProperty, modHook::ReferenceTo(this))) return;
    m_hook = modHook::InstallKeys(m_c);
}

void CHooker::StopKeyHooking() {
    if (!m_hook) return;
    m_c.host.windows.RemoveProperty(m_c.recording.keyHookWindow, modHook::kKeyProperty);
    m_hook.reset();
}

std::int32_t CHooker::HandleKey(std::int32_t code, std::int32_t keyCode, std::uint32_t flags) {
    constexpr std::uint32_t kGoingUp = 0x80000000;
    constexpr std::int32_t kLowByte = 0xFF;
    host::IInputHooks& hooks = m_c.host.hooks;  // the handler may end this object
    if (code != 0) return hooks.CallNextHook(code);
    m_lastKey = keyCode;
    if ((flags & kGoingUp) != 0 && OnSystemKeyUp) OnSystemKeyUp(keyCode & kLowByte);
    return hooks.CallNextHook(0);
}

}  // namespace kestrum
