// Windows of the desktop. A message window of ours is a hidden X window that other processes find by its title (and
// class, the same word); in our own process a message goes straight to its procedure. To another process a message
// travels as a record added to a property of the receiving window; no answer comes back from there.
#pragma once

#include <map>

#include "adapters/linux/LoopBase.h"
#include "adapters/linux/X11Connection.h"
#include "host/IWindows.h"

namespace kestrum::platform {

class X11Windows : public host::IWindows {
  public:
    X11Windows(LoopBase& loop, X11Connection& display);
    ~X11Windows() override;

    [[nodiscard]] std::unique_ptr<host::IMessageWindow> CreateMessageWindow(
        const String& name, std::function<std::int64_t(const host::WindowMessage&)> procedure) override;
    bool IsWindow(host::WindowHandle window) override;
    std::optional<host::WindowHandle> FindWindow(const String& className, const String& title) override;
    String WindowText(host::WindowHandle window, std::int32_t limit) override;
    /// The answer of a window of another process is 0, at once.
    std::int64_t SendMessage(host::WindowHandle window, const host::WindowMessage& message) override;
    void InvalidateAndUpdate(host::WindowHandle window) override;
    void BringToFront(host::WindowHandle window) override;
    std::uint64_t Property(host::WindowHandle window, const String& name) override;
    bool SetProperty(host::WindowHandle window, const String& name, std::uint64_t value) override;
    void RemoveProperty(host::WindowHandle window, const String& name) override;
    std::optional<host::WindowHandle> WindowOfProcess(std::int64_t processId) override;

    /// Hands the message over from the next pump; lost if the window has gone by then. From any thread.
    void Post(host::WindowHandle window, const host::WindowMessage& message);

  private:
    using Procedure = std::function<std::int64_t(const host::WindowMessage&)>;
    struct Registry;
    class MessageWindow;

    host::WindowHandle MakeHandle(const std::string& name);
    void Destroy(xcb_window_t window);
    void Drain();
    void ReceiveMail(xcb_window_t window);
    void SendMail(xcb_window_t window, const host::WindowMessage& message);
    std::vector<xcb_window_t> TopLevelWindows();
    std::string Title(xcb_window_t window);
    bool HasClass(xcb_window_t window, const std::string& name);

    LoopBase& m_loop;
    X11Connection& m_display;
    X11Connection m_mail;  ///< owns our hidden windows and hears of their properties
    std::shared_ptr<Registry> m_registry;
    std::map<std::pair<host::WindowHandle, String>, std::uint64_t> m_properties;
    std::unique_ptr<IWatch> m_watch;
};

}  // namespace kestrum::platform
