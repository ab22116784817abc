#include "adapters/sim/Windows.h"

#include <algorithm>

namespace kestrum::sim {

namespace {

String NumberText(std::uint64_t value) {
    return host::FromUtf8(std::to_string(value));
}

}  // namespace

/// Takes its window away when the owner lets go of it.
class Windows::OwnWindow : public host::IMessageWindow {
  public:
    OwnWindow(Windows& windows, host::WindowHandle handle) : m_windows(windows), m_handle(handle) {}
    ~OwnWindow() override { m_windows.m_windows.erase(m_handle); }
    host::WindowHandle Handle() override { return m_handle; }

  private:
    Windows& m_windows;
    host::WindowHandle m_handle;
};

std::unique_ptr<host::IMessageWindow> Windows::CreateMessageWindow(
    const String& name, std::function<std::int64_t(const host::WindowMessage&)> procedure) {
    host::WindowHandle handle = m_next++;
    Data& data = m_windows[handle];
    data.title = name;
    data.procedure = std::move(procedure);
    return std::make_unique<OwnWindow>(*this, handle);
}

bool Windows::IsWindow(host::WindowHandle window) {
    return m_windows.count(window) > 0;
}

std::optional<host::WindowHandle> Windows::FindWindow(const String& className, const String& title) {
    for (const auto& [handle, data] : m_windows) {
        if (data.procedure) continue;
        if ((className.empty() || data.className == className) && (title.empty() || data.title == title)) return handle;
    }
    return std::nullopt;
}

String Windows::WindowText(host::WindowHandle window, std::int32_t limit) {
    auto found = m_windows.find(window);
    if (found == m_windows.end()) return String();
    return found->second.title.substr(0, static_cast<std::size_t>(std::max(limit, 0)));
}

std::int64_t Windows::SendMessage(host::WindowHandle window, const host::WindowMessage& message) {
    auto found = m_windows.find(window);
    if (found == m_windows.end()) return 0;
    if (auto procedure = found->second.procedure) return procedure(message);
    received.emplace_back(window, message);
    return 0;
}

void Windows::PostMessage(host::WindowHandle window, const host::WindowMessage& message) {
    m_loop.Post([this, window, message] { SendMessage(window, message); });
}

void Windows::InvalidateAndUpdate(host::WindowHandle window) {
    m_transcript.Add(u"windows.InvalidateAndUpdate " + NumberText(window));
}

void Windows::BringToFront(host::WindowHandle window) {
    m_transcript.Add(u"windows.BringToFront " + NumberText(window));
}

std::uint64_t Windows::Property(host::WindowHandle window, const String& name) {
    auto found = m_windows.find(window);
    if (found == m_windows.end()) return 0;
    auto property = found->second.properties.find(name);
    return property == found->second.properties.end() ? 0 : property->second;
}

bool Windows::SetProperty(host::WindowHandle window, const String& name, std::uint64_t value) {
    auto found = m_windows.find(window);
    if (found == m_windows.end() || refuseProperties) return false;
    found->second.properties[name] = value;
    return true;
}

void Windows::RemoveProperty(host::WindowHandle window, const String& name) {
    auto found = m_windows.find(window);
    if (found != m_windows.end()) found->second.properties.erase(name);
}

std::optional<host::WindowHandle> Windows::WindowOfProcess(std::int64_t processId) {
    for (const auto& [handle, data] : m_windows) {
        if (processId != 0 && data.processId == processId) return handle;
    }
    return std::nullopt;
}

host::WindowHandle Windows::AddForeign(const String& className, const String& title, std::int64_t processId) {
    host::WindowHandle handle = m_next++;
    Data& data = m_windows[handle];
    data.className = className;
    data.title = title;
    data.processId = processId;
    return handle;
}

void Windows::RemoveForeign(host::WindowHandle window) {
    m_windows.erase(window);
}

host::WindowHandle Windows::Own(const String& name) const {
    for (const auto& [handle, data] : m_windows) {
        if (data.procedure && data.title == name) return handle;
    }
    return 0;
}

int Windows::OwnCount(const String& name) const {
    return static_cast<int>(std::count_if(m_windows.begin(), m_windows.end(), [&](const auto& window) {
        return window.second.procedure && window.second.title == name;
    }));
}

}  // namespace kestrum::sim
