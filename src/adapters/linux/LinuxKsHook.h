// The hook library: raw input becomes messages 0x8001 to 0x800C of one window. A lock file of the user makes sure that
// one recorder at a time has the hook; it goes with the process, however that ends.
#pragma once

#include <memory>
#include <string>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/RawInput.h"
#include "adapters/linux/X11Windows.h"
#include "host/IKsHook.h"

namespace kestrum::platform {

class LinuxKsHook : public host::IKsHook {
  public:
    /// `lockFile` is the same for all recorders of a user, see DefaultLockFile.
    LinuxKsHook(RawInput& input, X11Connection& display, X11Windows& windows, std::string lockFile)
        : m_input(input), m_display(display), m_windows(windows), m_lockFile(std::move(lockFile)) {}

    /// 1, or 0 if another recorder has the hook or there is no display to hook.
    std::int32_t InstallMessageHook(host::WindowHandle window, std::int32_t hostKind) override;
    void UnInstallMessageHook() override;
    void EnableHotKey(std::int32_t enable) override { m_hotKeys = enable != 0; }

    static std::string DefaultLockFile();

  private:
    void Handle(const InputEvent& event);

    RawInput& m_input;
    X11Connection& m_display;
    X11Windows& m_windows;
    std::string m_lockFile;
    Descriptor m_lock;
    std::unique_ptr<host::IHook> m_listening;
    host::WindowHandle m_target = 0;
    std::int32_t m_keyDown = 0;  ///< the hot key that is held: a held key repeats and counts once
    bool m_hotKeys = false;
};

}  // namespace kestrum::platform
