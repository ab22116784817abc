// Watches the mouse through the system's low-level hook and turns each hook call into an event of its own. One tracer a
// window: the callback finds its object through a property of that window.
#pragma once

#include <functional>
#include <memory>

#include "recording/Context.h"

namespace kestrum {

class CTracer {
  public:
    explicit CTracer(const recording::Context& c) : m_c(c) {}
    ~CTracer() { StopMouseTracing(); }
    CTracer(const CTracer&) = delete;
    CTracer& operator=(const CTracer&) = delete;

    /// Pointer position as last read; moves with move messages only.
    std::int32_t CoordinateX = 0, CoordinateY = 0;
    /// Title of the window under the pointer, at most 255 characters, cut at the first NUL.
    String WindowTextUnderMouse() const;
    host::WindowHandle WindowHandleUnderMouse() const;

    /// Hooks the mouse for `window`. Nothing happens if it is no window or already has a tracer.
    void StartMouseTracing(host::WindowHandle window);
    void StopMouseTracing();

    std::function<void()> OnSystemMouseMove, OnSystemMouseWheel, OnSystemMouseLeftDown, OnSystemMouseLeftUp,
        OnSystemMouseRightDown, OnSystemMouseRightUp, OnSystemMouseMiddleDown, OnSystemMouseMiddleUp;

    /// What the hook calls (modHook). The result is the hook's answer.
    std::int32_t HandleMouse(std::int32_t code, std::int32_t message, const host::MouseRecord& record);

  private:
    const std::function<void()>* EventOf(std::int32_t message) const;

    recording::Context m_c;
    std::unique_ptr<host::IHook> m_hook;
    /// A stop leaves the handle's value in place, unlike CHooker's: a second stop takes the property away again.
    bool m_isHandleSet = false;
    host::MouseRecord m_record;
};

}  // namespace kestrum
