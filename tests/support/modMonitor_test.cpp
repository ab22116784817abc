// Monitors, and the status line that stands on one.
#include "support/modMonitor.h"

#include "SupportWorld.h"
#include "support/frmStatus.h"

namespace kestrum {
namespace {

using namespace modMonitor;

class modMonitorTest : public SupportTest {
  protected:
    /// A second monitor of 2000 by 1000 pixels, whose record is half of that.
    host::MonitorHandle AddScaled() {
        const host::MonitorHandle handle = world.monitors.AddRight(2000, 1000);
        world.monitors.Find(handle)->scale = 2.0;
        return handle;
    }
};

TEST_F(modMonitorTest, Size_OfAScaledMonitor_IsThatOfItsMode) {
    const host::MonitorHandle scaled = AddScaled();
    EXPECT_EQ(GetMonitorWidth(c, scaled, kPixels), 2000);
    EXPECT_EQ(GetMonitorHeight(c, scaled, kPixels), 1000);
    EXPECT_EQ(GetMonitorWidth(c, 0, kPixels), 1920);
    EXPECT_EQ(GetMonitorHeight(c, 0, kPixels), 1080);
}

TEST_F(modMonitorTest, Size_OnAnOlderSystem_IsThatOfTheRecord) {
    const host::MonitorHandle scaled = AddScaled();
    state.g_OsVersion = 62;
    EXPECT_EQ(GetMonitorWidth(c, scaled, kPixels), 1000);
    EXPECT_EQ(GetMonitorHeight(c, scaled, kPixels), 500);
    EXPECT_EQ(GetMonitorWidth(c, 0, kPixels), 1920);
}

TEST_F(modMonitorTest, Size_InTwips_GoesWithThePixelsPerInch) {
    EXPECT_EQ(GetMonitorWidth(c, 0, kTwips), 28800);
    world.monitors.pixelsPerInch = 120;
    EXPECT_EQ(GetMonitorHeight(c, 0, kTwips), 12960);
}

TEST_F(modMonitorTest, Size_OfAnUnknownMonitor_IsZero) {
    EXPECT_EQ(GetMonitorWidth(c, 999, kPixels), 0);
    EXPECT_EQ(GetMonitorHeight(c, 999, kPixels), 0);
}

TEST_F(modMonitorTest, Rect_IsPhysical) {
    const host::MonitorHandle second = world.monitors.AddRight(1280, 720);
    EXPECT_EQ(GetMonitorRect(c, second), (host::Rect{1920, 0, 3200, 720}));
}

TEST_F(modMonitorTest, Rect_WhenTheConversionFails_TellsAndGoesOnWithTheRecord) {
    world.monitors.conversionFails = true;
    EXPECT_EQ(GetMonitorRect(c, world.monitors.all[0].handle), (host::Rect{0, 0, 1920, 1080}));
    ASSERT_EQ(world.box.Shown().size(), 2u);
    EXPECT_EQ(LastBox(), u"LogicalToPhysicalPointForPerMonitorDPI fail");
    state.g_OsVersion = 62;
    GetMonitorRect(c, world.monitors.all[0].handle);
    EXPECT_EQ(world.box.Shown().size(), 2u) << "older systems convert nothing";
}

TEST_F(modMonitorTest, PhysicalToLogical_ScalesByTheMonitorOfTheCorner) {
    world.monitors.all[0].scale = 1.5;
    EXPECT_EQ(PhysicalToLogicalRect(c, {300, 150, 600, 450}), (host::Rect{200, 100, 400, 300}));
    state.g_OsVersion = 62;
    EXPECT_EQ(PhysicalToLogicalRect(c, {300, 150, 600, 450}), (host::Rect{300, 150, 600, 450}));
}

TEST_F(modMonitorTest, PhysicalToLogical_OutsideAllMonitors_ChangesNothing) {
    EXPECT_EQ(PhysicalToLogicalRect(c, {-500, 0, -100, 100}), (host::Rect{-500, 0, -100, 100}));
}

TEST_F(modMonitorTest, StatusLine_StandsAboveTheMonitorsMiddle_AndOutOfThePicture) {
    auto& status = forms.Get<frmStatus>(c);
    status.ShowText(u"Preparing the recording ...");
    EXPECT_TRUE(status.IsVisible());
    EXPECT_EQ(status.lStatus.Caption(), u"Preparing the recording ...");
    EXPECT_EQ(status.Place().start, ui::StartPosition::CentreHorizontally);
    EXPECT_EQ(status.Place().top, 440);
    EXPECT_TRUE(status.Style().topmost);
    EXPECT_TRUE(status.Style().layered);
    EXPECT_TRUE(status.Style().excludedFromCapture);
    EXPECT_EQ(status.Style().opacity, 255);
    status.ShowText(u"Another");
    EXPECT_EQ(status.lStatus.Caption(), u"Another");
    status.Unload();
    EXPECT_EQ(forms.Get<frmStatus>(c).lStatus.Caption(), u"");
}

}  // namespace
}  // namespace kestrum
