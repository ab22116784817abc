// Keeps the system and the display awake: asks the desktop (org.freedesktop.ScreenSaver), the login manager
// (org.freedesktop.login1) and the X server, whichever are there. All three let go by themselves when the process ends.
#pragma once

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/X11Connection.h"
#include "host/IPower.h"
#include "host/ITrace.h"

struct sd_bus;

namespace kestrum::platform {

class LinuxPower : public host::IPower {
  public:
    LinuxPower(X11Connection& display, host::ITrace& trace) : m_display(display), m_trace(trace) {}
    LinuxPower(const LinuxPower&) = delete;
    LinuxPower& operator=(const LinuxPower&) = delete;
    ~LinuxPower() override;

    /// Any of the two requirements, together with "continuous", keeps both awake. Waits at most 2 s for each service.
    void SetExecutionState(std::uint32_t state) override;
    /// The desktop's screen saver service or the X server took the wish; the login manager rules the system alone.
    bool KeepsDisplayAwake() override { return !m_awake || m_displayHeld; }

  private:
    void KeepAwake();
    void LetSleep();
    void AskDesktop();
    void AskLoginManager();
    void SuspendScreenSaver(bool suspended);

    X11Connection& m_display;
    host::ITrace& m_trace;
    sd_bus* m_desktop = nullptr;  ///< holds the desktop's inhibition while it is open
    Descriptor m_login;           ///< holds the login manager's
    bool m_awake = false;
    bool m_displayHeld = false;
};

}  // namespace kestrum::platform
