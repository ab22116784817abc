// Windows of the desktop: message windows of our own, and other programs' windows found by class or title.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/IInputHooks.h"

namespace kestrum::host {

/// One window message. `data` carries the bytes of message 74 (copy data), else it is empty.
struct WindowMessage {
    std::int32_t message = 0;
    std::int64_t first = 0;
    std::int64_t second = 0;
    std::string data;
};

/// A hidden window of ours; destroying it destroys the window.
class IMessageWindow {
  public:
    virtual ~IMessageWindow() = default;
    virtual WindowHandle Handle() = 0;
};

class IWindows {
  public:
    virtual ~IWindows() = default;
    /// Makes a hidden window; `procedure` gets its messages on the core's thread, from a pump.
    [[nodiscard]] virtual std::unique_ptr<IMessageWindow> CreateMessageWindow(
        const String& name, std::function<std::int64_t(const WindowMessage&)> procedure) = 0;
    virtual bool IsWindow(WindowHandle window) = 0;
    /// The first top-level window of class `className` (if not empty) with the title `title` (if not empty).
    virtual std::optional<WindowHandle> FindWindow(const String& className, const String& title) = 0;
    /// Title of a window, at most `limit` characters.
    virtual String WindowText(WindowHandle window, std::int32_t limit) = 0;
    /// Sends a message and waits for the answer.
    virtual std::int64_t SendMessage(WindowHandle window, const WindowMessage& message) = 0;
    /// Marks a window's content as stale and has it repainted at once.
    virtual void InvalidateAndUpdate(WindowHandle window) = 0;
    /// Brings a window to the front.
    virtual void BringToFront(WindowHandle window) = 0;
    /// A number kept on a window under a name; 0 if there is none.
    virtual std::uint64_t Property(WindowHandle window, const String& name) = 0;
    virtual bool SetProperty(WindowHandle window, const String& name, std::uint64_t value) = 0;
    virtual void RemoveProperty(WindowHandle window, const String& name) = 0;
    /// The first top-level window that process `processId` has shown, none if it has none yet.
    virtual std::optional<WindowHandle> WindowOfProcess(std::int64_t processId) = 0;
};

}  // namespace kestrum::host
