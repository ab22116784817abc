#include "adapters/linux/LinuxPower.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>
#include <xcb/screensaver.h>

#include <utility>

namespace kestrum::platform {
namespace {

constexpr std::uint64_t kTimeoutUs = 2'000'000;
constexpr const char* kProgram = "Kestrum";
constexpr const char* kReason = "A lecture may be recorded";

}  // namespace

LinuxPower::~LinuxPower() {
    LetSleep();
}

void LinuxPower::SetExecutionState(std::uint32_t state) {
    const bool continuous = (state & host::kExecutionContinuous) != 0;
    const bool required = (state & (host::kExecutionSystemRequired | host::kExecutionDisplayRequired)) != 0;
    if (!continuous || required == m_awake) return;
    if (required) {
        KeepAwake();
    } else {
        LetSleep();
    }
}

void LinuxPower::KeepAwake() {
    m_awake = true;
    m_displayHeld = false;
    AskDesktop();
    AskLoginManager();
    SuspendScreenSaver(true);
}

void LinuxPower::LetSleep() {
    if (!std::exchange(m_awake, false)) return;
    m_desktop = sd_bus_flush_close_unref(m_desktop);
    m_login = Descriptor();
    SuspendScreenSaver(false);
}

/// The desktop drops the inhibition when the connection goes, so there is no need to keep its cookie.
void LinuxPower::AskDesktop() {
    if (sd_bus_open_user(&m_desktop) < 0) return m_trace.Note(u"power: no session bus");
    sd_bus_set_method_call_timeout(m_desktop, kTimeoutUs);
    const int result =
        sd_bus_call_method(m_desktop, "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                           "org.freedesktop.ScreenSaver", "Inhibit", nullptr, nullptr, "ss", kProgram, kReason);
    if (result < 0) return m_trace.Note(u"power: the desktop has no screen saver service");
    m_displayHeld = true;
}

void LinuxPower::AskLoginManager() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0) return m_trace.Note(u"power: no system bus");
    sd_bus_set_method_call_timeout(bus, kTimeoutUs);
    sd_bus_message* reply = nullptr;
    int lock = -1;
    const int result =
        sd_bus_call_method(bus, "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                           "Inhibit", nullptr, &reply, "ssss", "sleep:idle", kProgram, kReason, "block");
    if (result >= 0 && sd_bus_message_read(reply, "h", &lock) >= 0) {
        m_login = Descriptor(fcntl(lock, F_DUPFD_CLOEXEC, 0));  // the message closes its own
    } else {
        m_trace.Note(u"power: the login manager gave no lock");
    }
    sd_bus_message_unref(reply);
    sd_bus_flush_close_unref(bus);
}

void LinuxPower::SuspendScreenSaver(bool suspended) {
    if (!m_display.IsOpen()) return;
    const auto* extension = xcb_get_extension_data(m_display.Get(), &xcb_screensaver_id);
    if (!extension || !extension->present) return;
    xcb_discard_reply(m_display.Get(), xcb_screensaver_query_version(m_display.Get(), 1, 1).sequence);
    xcb_screensaver_suspend(m_display.Get(), suspended ? 1 : 0);
    m_displayHeld = m_displayHeld || suspended;
    m_display.Flush();
}

}  // namespace kestrum::platform
