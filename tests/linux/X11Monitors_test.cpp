#include "adapters/linux/X11Monitors.h"

#include <gtest/gtest.h>

#include "adapters/linux/OutputModes.h"
#include "real/XvfbServer.h"

namespace kestrum::platform {
namespace {

using host::Rect;

class X11MonitorsTest : public testing::Test {
  protected:
    void Xrandr(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{"xrandr"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        ASSERT_EQ(real::Run(command).code, 0) << arguments.front();
    }
    void AddMode(const std::string& name, const std::vector<std::string>& timing) {
        std::vector<std::string> command{"--newmode", name};
        command.insert(command.end(), timing.begin(), timing.end());
        Xrandr(command);
        Xrandr({"--addmode", "screen", name});
    }
    void AddUsualMode() { AddMode("800x600", {"38.25", "800", "832", "912", "1024", "600", "603", "607", "624"}); }

    real::XvfbServer server{1280, 800};
    real::ScopedEnv variable = server.Use();
    X11Connection display;
    X11Monitors monitors{display};
};

TEST_F(X11MonitorsTest, OneMonitor_IsTheDefaultAndKnownByItsHandle) {
    const auto handle = monitors.MonitorFromPoint({10, 10});
    ASSERT_TRUE(handle.has_value());
    EXPECT_NE(*handle, 0u);
    EXPECT_EQ(monitors.MonitorRecord(*handle), (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(monitors.MonitorRecord(0), (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(monitors.MonitorName(0), u"screen");
    EXPECT_EQ(monitors.PrimaryDeviceSize(), (host::Point{1280, 800}));
    EXPECT_EQ(monitors.BitsPerPixel(), 32);
}

TEST_F(X11MonitorsTest, OutsideAllMonitors_ThereIsNone) {
    EXPECT_EQ(monitors.MonitorFromPoint({1280, 0}), std::nullopt);
    EXPECT_EQ(monitors.MonitorFromPoint({-1, 5}), std::nullopt);
    EXPECT_NE(monitors.MonitorFromPoint({1279, 799}), std::nullopt);
}

TEST_F(X11MonitorsTest, UnknownMonitor_HasNothing) {
    constexpr host::MonitorHandle kUnknown = 0x7FFFFFF;
    EXPECT_EQ(monitors.MonitorRecord(kUnknown), std::nullopt);
    EXPECT_EQ(monitors.CurrentMode(kUnknown), std::nullopt);
    EXPECT_EQ(monitors.EnumerateMode(kUnknown, 0), std::nullopt);
    EXPECT_EQ(monitors.LogicalToPhysical(kUnknown, {1, 1}), std::nullopt);
    EXPECT_EQ(monitors.MonitorName(kUnknown), u"");
    EXPECT_FALSE(monitors.ChangeMode(kUnknown, 800, 600));
}

TEST_F(X11MonitorsTest, TwoMonitors_AreToldApart) {
    Xrandr({"--setmonitor", "LEFT", "640/170x800/200+0+0", "screen"});
    Xrandr({"--setmonitor", "*RIGHT", "640/170x800/200+640+0", "none"});
    const auto left = monitors.MonitorFromPoint({639, 0}), right = monitors.MonitorFromPoint({640, 0});
    ASSERT_TRUE(left && right);
    EXPECT_NE(*left, *right);
    EXPECT_EQ(monitors.MonitorRecord(*right), (Rect{640, 0, 1280, 800}));
    EXPECT_EQ(monitors.MonitorName(*left), u"LEFT");
    EXPECT_EQ(monitors.MonitorRecord(0), monitors.MonitorRecord(*right)) << "the primary one is the default";
    EXPECT_EQ(monitors.CurrentMode(*right), (host::DisplayMode{640, 800, 32, 0}));
    EXPECT_FALSE(monitors.ChangeMode(*right, 320, 200)) << "no output drives it";
}

TEST_F(X11MonitorsTest, Modes_AreListedUntilNone) {
    AddUsualMode();
    std::vector<host::DisplayMode> modes;
    for (std::int32_t i = 0; const auto mode = monitors.EnumerateMode(0, i); ++i) modes.push_back(*mode);
    ASSERT_EQ(modes.size(), 2u);
    EXPECT_EQ(modes[1], (host::DisplayMode{800, 600, 32, 60}));
    EXPECT_EQ(monitors.EnumerateMode(0, -1), std::nullopt);
    EXPECT_EQ(monitors.CurrentMode(0)->width, 1280);
}

TEST_F(X11MonitorsTest, ChangeMode_ResizesTheScreen_AndBack) {
    AddUsualMode();
    ASSERT_TRUE(monitors.ChangeMode(0, 800, 600));
    EXPECT_EQ(monitors.MonitorRecord(0), (Rect{0, 0, 800, 600}));
    EXPECT_EQ(real::Run({"xdotool", "getdisplaygeometry"}).output, "800 600\n");
    EXPECT_EQ(monitors.CurrentMode(0), (host::DisplayMode{800, 600, 32, 60}));
    ASSERT_TRUE(monitors.ChangeMode(0, 1280, 800));
    EXPECT_EQ(monitors.MonitorRecord(0), (Rect{0, 0, 1280, 800}));
}

TEST_F(X11MonitorsTest, ChangeMode_ToASizeWithoutAMode_ChangesNothing) {
    EXPECT_FALSE(monitors.ChangeMode(0, 1024, 768));
    EXPECT_EQ(monitors.MonitorRecord(0), (Rect{0, 0, 1280, 800}));
    EXPECT_TRUE(monitors.ChangeMode(0, 1280, 800)) << "the mode in force";
}

TEST_F(X11MonitorsTest, PixelsPerInch_AreWhatTheDesktopAsksFor) {
    EXPECT_EQ(monitors.PixelsPerInchX(), 96);
    const std::string value = "Xcursor.size:\t24\nXft.dpi:\t144\nXft.rgba:\tnone\n";
    xcb_change_property(display.Get(), XCB_PROP_MODE_REPLACE, display.Root(), XCB_ATOM_RESOURCE_MANAGER,
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(value.size()), value.data());
    EXPECT_EQ(monitors.PixelsPerInchX(), 144);
    EXPECT_EQ(monitors.PixelsPerInchY(), 144);
}

TEST_F(X11MonitorsTest, ServerThatDies_LeavesEmptyAnswers) {
    server.Kill();
    EXPECT_EQ(monitors.MonitorRecord(0), std::nullopt);
    EXPECT_EQ(monitors.CurrentMode(0), std::nullopt);
    EXPECT_FALSE(display.IsOpen());
}

TEST(RefreshRate, IsTheNearestHertz_ZeroIfTheModeDoesNotSay) {
    xcb_randr_mode_info_t mode{};
    EXPECT_EQ(RefreshRate(mode), 0);
    mode.dot_clock = 148'500'000;
    mode.htotal = 2200;
    mode.vtotal = 1125;
    EXPECT_EQ(RefreshRate(mode), 60);
}

TEST(X11MonitorsWithoutDisplay, AnswersNone) {
    const real::ScopedEnv none("DISPLAY", "");
    X11Connection display;
    X11Monitors monitors(display);
    EXPECT_EQ(monitors.MonitorRecord(0), std::nullopt);
    EXPECT_EQ(monitors.MonitorFromPoint({0, 0}), std::nullopt);
    EXPECT_EQ(monitors.PixelsPerInchX(), 96);
    EXPECT_EQ(monitors.PrimaryDeviceSize(), (host::Point{0, 0}));
    EXPECT_FALSE(monitors.ChangeMode(0, 800, 600));
}

}  // namespace
}  // namespace kestrum::platform
