// Windows: our own message windows, and foreign ones that a test puts there. A message sent to a foreign window is
// kept for the test.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Transcript.h"
#include "host/IWindows.h"

namespace kestrum::sim {

class Windows : public host::IWindows {
  public:
    Windows(EventLoop& loop, Transcript& transcript) : m_loop(loop), m_transcript(transcript) {}

    std::unique_ptr<host::IMessageWindow> CreateMessageWindow(
        const String& name, std::function<std::int64_t(const host::WindowMessage&)> procedure) override;
    bool IsWindow(host::WindowHandle window) override;
    std::optional<host::WindowHandle> FindWindow(const String& className, const String& title) override;
    String WindowText(host::WindowHandle window, std::int32_t limit) override;
    std::int64_t SendMessage(host::WindowHandle window, const host::WindowMessage& message) override;
    void InvalidateAndUpdate(host::WindowHandle window) override;
    void BringToFront(host::WindowHandle window) override;
    std::uint64_t Property(host::WindowHandle window, const String& name) override;
    bool SetProperty(host::WindowHandle window, const String& name, std::uint64_t value) override;
    void RemoveProperty(host::WindowHandle window, const String& name) override;
    std::optional<host::WindowHandle> WindowOfProcess(std::int64_t processId) override;

    /// A window of another program.
    host::WindowHandle AddForeign(const String& className, const String& title, std::int64_t processId = 0);
    void RemoveForeign(host::WindowHandle window);
    /// The message reaches the window's procedure from the next pump; one for a window that is gone is lost.
    void PostMessage(host::WindowHandle window, const host::WindowMessage& message);
    /// Our message window of this name, 0 if there is none.
    host::WindowHandle Own(const String& name) const;
    int OwnCount(const String& name) const;

    /// What foreign windows were sent.
    std::vector<std::pair<host::WindowHandle, host::WindowMessage>> received;
    bool refuseProperties = false;

  private:
    struct Data {
        String className, title;
        std::int64_t processId = 0;
        std::function<std::int64_t(const host::WindowMessage&)> procedure;
        std::map<String, std::uint64_t> properties;
    };
    class OwnWindow;

    EventLoop& m_loop;
    Transcript& m_transcript;
    std::map<host::WindowHandle, Data> m_windows;
    host::WindowHandle m_next = 100;
};

}  // namespace kestrum::sim
