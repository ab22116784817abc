// Real outputs, several of them, with real modes: what is listed, what a change does, what a refusal leaves.
#include <gtest/gtest.h>

#include <algorithm>

#include "adapters/linux/X11Monitors.h"
#include "real/XorgServer.h"

namespace kestrum::platform {
namespace {

using host::DisplayMode;
using host::Rect;

class MonitorsTest : public testing::Test {
  protected:
    std::vector<DisplayMode> ModesOf(host::MonitorHandle monitor) {
        std::vector<DisplayMode> modes;
        for (std::int32_t i = 0; const auto mode = monitors.EnumerateMode(monitor, i); ++i) modes.push_back(*mode);
        return modes;
    }
    host::MonitorHandle At(std::int32_t x, std::int32_t y) { return monitors.MonitorFromPoint({x, y}).value_or(0); }

    host::Point DesktopSize() {
        const XReply<xcb_get_geometry_reply_t> root(
            xcb_get_geometry_reply(display.Get(), xcb_get_geometry(display.Get(), display.Root()), nullptr));
        return {root->width, root->height};
    }

    real::XorgServer server{{"1920x1080,1280x720,1024x768,1280x720@25", "1280x1024,1024x768,1280x1024@25"}};
    real::ScopedEnv variable = server.Use();
    X11Connection display;
    X11Monitors monitors{display};
    const host::MonitorHandle left = At(0, 0), right = At(1920, 0);
};

TEST_F(MonitorsTest, EachOutput_IsAMonitorWithItsOwnModes) {
    EXPECT_EQ(monitors.MonitorRecord(left), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(monitors.MonitorRecord(right), (Rect{1920, 0, 3200, 1024}));
    EXPECT_EQ(monitors.MonitorName(right), u"DUMMY1");
    const auto modes = ModesOf(right);
    for (const DisplayMode& mode : {DisplayMode{1280, 1024, 32, 50}, {1024, 768, 32, 50}, {1280, 1024, 32, 25}}) {
        EXPECT_NE(std::find(modes.begin(), modes.end(), mode), modes.end()) << mode.width << " at " << mode.refreshRate;
    }
    EXPECT_EQ(monitors.CurrentMode(left), (DisplayMode{1920, 1080, 32, 50}));
    EXPECT_EQ(monitors.MonitorRecord(0), monitors.MonitorRecord(left)) << "the primary one";
    EXPECT_EQ(monitors.MonitorFromPoint({2000, 1050}), std::nullopt) << "below the smaller one";
}

TEST_F(MonitorsTest, CurrentMode_HasTheRateInForce_NotThatOfTheFirstModeOfItsSize) {
    ASSERT_TRUE(server.Xrandr({"--output", "DUMMY1", "--mode", "1280x1024-25"}));
    EXPECT_EQ(monitors.CurrentMode(right), (DisplayMode{1280, 1024, 32, 25}));
    ASSERT_TRUE(server.Xrandr({"--output", "DUMMY1", "--mode", "1280x1024-50"}));
    EXPECT_EQ(monitors.CurrentMode(right), (DisplayMode{1280, 1024, 32, 50}));
}

TEST_F(MonitorsTest, ChangeMode_MovesTheMonitorRightOfIt_AndShrinksTheScreen) {
    ASSERT_TRUE(monitors.ChangeMode(left, 1280, 720));
    EXPECT_EQ(monitors.MonitorRecord(left), (Rect{0, 0, 1280, 720}));
    EXPECT_EQ(monitors.MonitorRecord(right), (Rect{1280, 0, 2560, 1024}));
    EXPECT_EQ(monitors.CurrentMode(left)->refreshRate, 50) << "the rate is kept where there is a choice";
    EXPECT_EQ(DesktopSize(), (host::Point{2560, 1024}));
    ASSERT_TRUE(monitors.ChangeMode(left, 1920, 1080));
    EXPECT_EQ(monitors.MonitorRecord(left), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(monitors.MonitorRecord(right), (Rect{1920, 0, 3200, 1024}));
}

TEST_F(MonitorsTest, ChangeMode_OfTheRightOne_LeavesTheLeftOneAlone) {
    ASSERT_TRUE(monitors.ChangeMode(right, 1024, 768));
    EXPECT_EQ(monitors.MonitorRecord(left), (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(monitors.MonitorRecord(right), (Rect{1920, 0, 2944, 768}));
}

TEST_F(MonitorsTest, ChangeMode_MovesTheMonitorBelowIt) {
    ASSERT_TRUE(server.Xrandr({"--output", "DUMMY1", "--below", "DUMMY0"}));
    ASSERT_EQ(monitors.MonitorRecord(right), (Rect{0, 1080, 1280, 2104}));
    ASSERT_TRUE(monitors.ChangeMode(left, 1280, 720));
    EXPECT_EQ(monitors.MonitorRecord(right), (Rect{0, 720, 1280, 1744}));
}

TEST_F(MonitorsTest, ChangeMode_ToASizeThatTheOutputLacks_ChangesNothing) {
    EXPECT_FALSE(monitors.ChangeMode(right, 800, 600));
    EXPECT_EQ(monitors.MonitorRecord(right), (Rect{1920, 0, 3200, 1024}));
}

TEST_F(MonitorsTest, TheModeStays_WhenTheProgramThatChangedItEnds) {
    {
        X11Connection another;
        X11Monitors itsMonitors(another);
        ASSERT_TRUE(itsMonitors.ChangeMode(left, 1280, 720));
    }
    EXPECT_EQ(monitors.MonitorRecord(left), (Rect{0, 0, 1280, 720}));
}

TEST_F(MonitorsTest, MonitorTurnedOff_IsUnknown) {
    ASSERT_TRUE(server.Xrandr({"--output", "DUMMY1", "--off"}));
    EXPECT_EQ(monitors.MonitorRecord(right), std::nullopt);
    EXPECT_EQ(monitors.CurrentMode(right), std::nullopt);
    EXPECT_FALSE(monitors.ChangeMode(right, 1024, 768));
    EXPECT_EQ(monitors.MonitorFromPoint({1920, 0}), std::nullopt);
}

TEST(MonitorsAtTheEdge, ChangeMode_ThatTheServerRefuses_PutsTheOldLayoutBack) {
    const real::XorgServer server({"640x200,1280x200", "640x200"});
    const real::ScopedEnv variable = server.Use();
    X11Connection display;
    X11Monitors monitors(display);
    ASSERT_TRUE(server.Xrandr({"--output", "DUMMY1", "--pos", "32000x0"}));  // no screen is wider than 32767
    const auto left = monitors.MonitorFromPoint({0, 0});
    ASSERT_TRUE(left);
    EXPECT_FALSE(monitors.ChangeMode(*left, 1280, 200));
    EXPECT_EQ(monitors.MonitorRecord(*left), (Rect{0, 0, 640, 200}));
    EXPECT_NE(monitors.MonitorFromPoint({32000, 0}), std::nullopt);
}

}  // namespace
}  // namespace kestrum::platform
