#include "recording/modHook.h"

#include "recording/CHooker.h"
#include "recording/CTracer.h"

namespace kestrum::modHook {

namespace {

template <class Object>
Object* ObjectOf(const recording::Context& c, host::WindowHandle window, const String& property) {
    return reinterpret_cast<Object*>(static_cast<std::uintptr_t>(c.host.windows.Property(window, property)));
}

}  // namespace

std::unique_ptr<host::IHook> InstallMouse(const recording::Context& c) {
    return c.host.hooks.InstallMouseHook(
        [c](std::int32_t code, std::int32_t message, const host::MouseRecord& record) -> std::int32_t {
            auto* tracer = ObjectOf<CTracer>(c, c.recording.mouseHookWindow, kMouseProperty);
            return tracer ? tracer->HandleMouse(code, message, record) : 0;
        });
}

std::unique_ptr<host::IHook> InstallKeys(const recording::Context& c) {
    return c.host.hooks.InstallKeyHook(
        [c](std::int32_t code, std::int32_t keyCode, std::uint32_t flags) -> std::int32_t {
            auto* hooker = ObjectOf<CHooker>(c, c.recording.keyHookWindow, kKeyProperty);
            return hooker ? hooker->HandleKey(code, keyCode, flags) : c.host.hooks.CallNextHook(code);
        });
}

}  // namespace kestrum::modHook
