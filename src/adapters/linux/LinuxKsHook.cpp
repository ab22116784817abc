#include "adapters/linux/LinuxKsHook.h"

#include <fcntl.h>
#include <sys/file.h>

#include "adapters/linux/LinuxShellFolders.h"

namespace kestrum::platform {
namespace {

constexpr std::int32_t kMoved = 0x8001, kLeftDown = 0x8002, kLeftUp = 0x8003, kRightUp = 0x8004;
constexpr std::int32_t kFirstHotKeyMessage = 0x8009;
constexpr std::int32_t kF9 = 120, kF12 = 123;

std::int32_t MouseMessage(const InputEvent& event) {
    if (event.kind == InputEvent::Kind::Motion) return kMoved;
    if (event.kind == InputEvent::Kind::ButtonDown) return event.button == 1 ? kLeftDown : 0;
    if (event.kind != InputEvent::Kind::ButtonUp) return 0;
    return event.button == 1 ? kLeftUp : event.button == 3 ? kRightUp : 0;
}

}  // namespace

std::string LinuxKsHook::DefaultLockFile() {
    const std::string folder = RuntimeFolder();
    return folder.empty() ? "" : folder + "/kestrum-hook.lock";
}

std::int32_t LinuxKsHook::InstallMessageHook(host::WindowHandle window, std::int32_t) {
    if (m_listening) return 0;
    Descriptor lock(open(m_lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock || flock(lock.Get(), LOCK_EX | LOCK_NB) != 0) return 0;
    m_listening = m_input.Listen([this](const InputEvent& event) { Handle(event); });
    if (!m_listening) return 0;
    m_lock = std::move(lock);
    m_target = window;
    m_keyDown = 0;
    return 1;
}

void LinuxKsHook::UnInstallMessageHook() {
    m_listening.reset();
    m_lock = Descriptor();
}

void LinuxKsHook::Handle(const InputEvent& event) {
    if (const std::int32_t message = MouseMessage(event)) {
        const host::Point at = m_display.Pointer();
        m_windows.Post(m_target, {message, at.x, at.y, {}});
        return;
    }
    const bool isHotKey = event.virtualKey >= kF9 && event.virtualKey <= kF12;
    if (event.kind == InputEvent::Kind::KeyUp && event.virtualKey == m_keyDown) m_keyDown = 0;
    if (event.kind != InputEvent::Kind::KeyDown || !isHotKey || event.virtualKey == m_keyDown) return;
    m_keyDown = event.virtualKey;
    if (!m_hotKeys || event.modified) return;
    m_windows.Post(m_target, {kFirstHotKeyMessage + event.virtualKey - kF9, 0, 0, {}});
}

}  // namespace kestrum::platform
