#include "adapters/linux/LinuxPower.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <atomic>
#include <thread>

#include "linux/RecordingTrace.h"
#include "real/XvfbServer.h"

namespace kestrum::platform {
namespace {

constexpr std::uint32_t kAwake = 0x80000003, kSleepy = 0x80000000;

/// A message bus of our own.
class Bus {
  public:
    explicit Bus(const std::string& folder) : m_address("unix:path=" + folder + "/bus") {
        m_daemon = real::ChildProcess({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + m_address},
                                      QuietOptions());
        EXPECT_TRUE(real::WaitFor([&] { return std::filesystem::exists(folder + "/bus"); }));
    }
    const std::string& Address() const { return m_address; }

  private:
    static real::ChildProcess::Options QuietOptions() {
        real::ChildProcess::Options options;
        options.quiet = true;
        return options;
    }
    std::string m_address;
    real::ChildProcess m_daemon;
};

/// A desktop that knows who asked it to stay awake, and notices when that one goes.
class Desktop {
  public:
    explicit Desktop(const std::string& address) {
        EXPECT_GE(sd_bus_new(&m_bus), 0);
        sd_bus_set_address(m_bus, address.c_str());
        sd_bus_set_bus_client(m_bus, 1);
        EXPECT_GE(sd_bus_start(m_bus), 0);
        static const sd_bus_vtable kTable[] = {SD_BUS_VTABLE_START(0),
                                               SD_BUS_METHOD("Inhibit", "ss", "u", Inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
                                               SD_BUS_VTABLE_END};
        sd_bus_add_object_vtable(m_bus, nullptr, "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", kTable,
                                 this);
        sd_bus_match_signal(m_bus, nullptr, "org.freedesktop.DBus", nullptr, "org.freedesktop.DBus", "NameOwnerChanged",
                            OwnerChanged, this);
        EXPECT_GE(sd_bus_request_name(m_bus, "org.freedesktop.ScreenSaver", 0), 0);
        m_thread = std::thread([this] {
            while (!m_stop) {
                while (sd_bus_process(m_bus, nullptr) > 0) continue;
                sd_bus_wait(m_bus, 20'000);
            }
        });
    }
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop() {
        m_stop = true;
        m_thread.join();
        sd_bus_flush_close_unref(m_bus);
    }

    std::atomic<int> asked{0};
    std::atomic<bool> held{false};

  private:
    static int Inhibit(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& desktop = *static_cast<Desktop*>(self);
        desktop.m_holder = sd_bus_message_get_sender(message);
        desktop.held = true;
        ++desktop.asked;
        return sd_bus_reply_method_return(message, "u", 1u);
    }
    static int OwnerChanged(sd_bus_message* message, void* self, sd_bus_error*) {
        auto& desktop = *static_cast<Desktop*>(self);
        const char *name = nullptr, *before = nullptr, *after = nullptr;
        sd_bus_message_read(message, "sss", &name, &before, &after);
        if (desktop.m_holder == name && !*after) desktop.held = false;
        return 0;
    }

    sd_bus* m_bus = nullptr;
    std::string m_holder;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

class LinuxPowerTest : public testing::Test {
  protected:
    real::TempFolder folder;
    RecordingTrace trace;
    real::ScopedEnv system{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus"};
};

TEST_F(LinuxPowerTest, Requirement_IsHeldAtTheDesktop_UntilItIsWithdrawn) {
    const Bus bus(folder.Path().string());
    const real::ScopedEnv address("DBUS_SESSION_BUS_ADDRESS", bus.Address());
    const real::ScopedEnv none("DISPLAY", "");
    Desktop desktop(bus.Address());
    X11Connection display;
    LinuxPower power(display, trace);
    power.SetExecutionState(kAwake);
    EXPECT_TRUE(desktop.held);
    power.SetExecutionState(kAwake);
    EXPECT_EQ(desktop.asked, 1);
    power.SetExecutionState(kSleepy);
    EXPECT_TRUE(real::WaitFor([&] { return !desktop.held; }));
    power.SetExecutionState(kAwake);
    EXPECT_EQ(desktop.asked, 2);
}

TEST_F(LinuxPowerTest, EndOfTheObject_LetsGo) {
    const Bus bus(folder.Path().string());
    const real::ScopedEnv address("DBUS_SESSION_BUS_ADDRESS", bus.Address());
    const real::ScopedEnv none("DISPLAY", "");
    Desktop desktop(bus.Address());
    X11Connection display;
    {
        LinuxPower power(display, trace);
        power.SetExecutionState(kAwake);
        EXPECT_TRUE(desktop.held);
    }
    EXPECT_TRUE(real::WaitFor([&] { return !desktop.held; }));
}

TEST_F(LinuxPowerTest, WithoutAnyService_ItIsHarmless) {
    const real::ScopedEnv address("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    const real::XvfbServer server;
    const auto variable = server.Use();
    X11Connection display;
    LinuxPower power(display, trace);
    power.SetExecutionState(kAwake);
    power.SetExecutionState(kSleepy);
    EXPECT_TRUE(display.IsOpen());
    EXPECT_EQ(trace.lines.size(), 2u) << "what is missing is noted";
}

}  // namespace
}  // namespace kestrum::platform
