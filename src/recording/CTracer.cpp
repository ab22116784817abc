#include "recording/CTracer.h"

#include "recording/modHook.h"

namespace kestrum {

namespace {

constexpr std::int32_t kMove = 512, kLeftDown = 513, kLeftUp = 514, kRightDown = 516, kRightUp = 517, kMiddleDown = 519,
                       kMiddleUp = 520, kWheel = 522;
constexpr std::int32_t kFirstWithPhysicalPoints = 60;  // system version
constexpr std::int32_t kLongestTitle = 255;

}  // namespace

void CTracer::StartMouseTracing(host::WindowHandle window) {
    host::IWindows& windows = m_c.host.windows;
    if (!windows.IsWindow(window)) return;
    m_c.recording.mouseHookWindow = window;
    if (windows.Property(window, modHook::kMouseProperty) != 0) return;
    if (!windows.SetProperty(window, modHook::kMouseProperty, modHook::ReferenceTo(this))) return;
    m_hook = modHook::InstallMouse(m_c);
    m_isHandleSet = m_hook != nullptr;
}

void CTracer::StopMouseTracing() {
    if (!m_isHandleSet) return;
    m_c.host.windows.RemoveProperty(m_c.recording.mouseHookWindow, modHook::kMouseProperty);
    m_hook.reset();
}

const std::function<void()>* CTracer::EventOf(std::int32_t message) const {
    switch (message) {
        case kMove:
            return &OnSystemMouseMove;
        case kLeftDown:
            return &OnSystemMouseLeftDown;
        case kLeftUp:
            return &OnSystemMouseLeftUp;
        case kRightDown:
            return &OnSystemMouseRightDown;
        case kRightUp:
            return &OnSystemMouseRightUp;
        case kMiddleDown:
            return &OnSystemMouseMiddleDown;
        case kMiddleUp:
            return &OnSystemMouseMiddleUp;
        case kWheel:
            return &OnSystemMouseWheel;
        default:
            return nullptr;
    }
}

std::int32_t CTracer::HandleMouse(std::int32_t code, std::int32_t message, const host::MouseRecord& record) {
    if (code != 0) return 0;
    m_record = record;
    const std::function<void()>* event = EventOf(message);
    if (!event) return 0;
    if (message == kMove) {
        bool physical = m_c.support.g_OsVersion >= kFirstWithPhysicalPoints;
        host::Point point = physical ? m_c.host.hooks.PhysicalCursorPosition() : m_c.host.hooks.CursorPosition();
        CoordinateX = point.x;
        CoordinateY = point.y;
    }
    host::IInputHooks& hooks = m_c.host.hooks;  // the handler may end this object
    if (*event) (*event)();
    return hooks.CallNextHook(0);
}

host::WindowHandle CTracer::WindowHandleUnderMouse() const {
    host::Point point{CoordinateX, CoordinateY};
    return m_c.support.g_OsVersion < kFirstWithPhysicalPoints ? m_c.host.hooks.WindowFromPoint(point)
                                                              : m_c.host.hooks.WindowFromPhysicalPoint(point);
}

String CTracer::WindowTextUnderMouse() const {
    String text = m_c.host.windows.WindowText(WindowHandleUnderMouse(), kLongestTitle);
    return text.substr(0, text.find(u'\0'));
}

}  // namespace kestrum
