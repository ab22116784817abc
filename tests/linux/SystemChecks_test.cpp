#include "adapters/linux/SystemChecks.h"

#include <gtest/gtest.h>

#include "real/MessageBus.h"
#include "real/XvfbServer.h"

namespace kestrum::platform {
namespace {

using real::ScopedEnv;
using SystemChecks::Session;
using SystemChecks::SessionType;

TEST(SystemChecks, SessionType_IsToldByTheSession_NotByDisplay) {
    const ScopedEnv display("DISPLAY", ":0");
    {
        const ScopedEnv type("XDG_SESSION_TYPE", "wayland"), socket("WAYLAND_DISPLAY", "");
        EXPECT_EQ(SessionType(), Session::Wayland);
    }
    {
        const ScopedEnv type("XDG_SESSION_TYPE", "x11"), socket("WAYLAND_DISPLAY", "wayland-0");
        EXPECT_EQ(SessionType(), Session::X11);
    }
    {
        const ScopedEnv type("XDG_SESSION_TYPE", ""), socket("WAYLAND_DISPLAY", "wayland-0");
        EXPECT_EQ(SessionType(), Session::Wayland);
    }
    const ScopedEnv type("XDG_SESSION_TYPE", "tty"), socket("WAYLAND_DISPLAY", "");
    EXPECT_EQ(SessionType(), Session::None);
}

TEST(SystemChecks, ScreenCast_NeedsAPortalOnTheBus) {
    const ScopedEnv none("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    EXPECT_FALSE(SystemChecks::HasScreenCast());
    const real::MessageBus bus;
    const ScopedEnv address = bus.Use();
    EXPECT_FALSE(SystemChecks::HasScreenCast());
}

TEST(SystemChecks, Display_IsTried) {
    {
        const real::XvfbServer server;
        const auto variable = server.Use();
        EXPECT_TRUE(SystemChecks::CanOpenDisplay());
    }
    const ScopedEnv none("DISPLAY", "");
    EXPECT_FALSE(SystemChecks::CanOpenDisplay());
}

TEST(SystemChecks, Folder_IsTried_AndNothingIsLeftInIt) {
    const real::TempFolder folder;
    EXPECT_TRUE(SystemChecks::IsFolderWritable(host::FromUtf8(folder.Path().string())));
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    EXPECT_FALSE(SystemChecks::IsFolderWritable(host::FromUtf8(folder / "none")));
    EXPECT_FALSE(SystemChecks::IsFolderWritable(u"/proc"));
    EXPECT_GT(SystemChecks::FreeBytes(host::FromUtf8(folder / "to/come")), 0);
}

}  // namespace
}  // namespace kestrum::platform
