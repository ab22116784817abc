// Which rectangle is captured, on which monitor, and what is refused.
#include "recording/modCapture.h"

#include "display/modRegion.h"
#include "recording/LectureDesk.h"
#include "recording/modViewer.h"

namespace kestrum {
namespace {

struct Capture : test::Lecture {
    Capture() {
        session.support.packagePath = kPackage;
        session.support.workFolder = u"/tmp/user/scratch";
        world.fs.PutFolder(u"/tmp/user/scratch");
        Slide(960, 540);
    }
    void Slide(std::int32_t width, std::int32_t height) {
        session.display.g_SlideWidthPt = width;
        session.display.g_SlideHeightPt = height;
    }
    bool Check(float left = 0, float top = 0) { return modCapture::CheckCaptureRegion(session.c, left, top); }
    host::Rect Area() const {
        const display::State& d = session.display;
        return {d.g_CaptureLeft, d.g_CaptureTop, d.g_CaptureRight, d.g_CaptureBottom};
    }
    host::Rect MaskArea(const String& name) {
        ui::Form* form = session.c.forms.Find(name);
        if (!form) return {};
        const ui::WindowPlace& p = form->Place();
        return {p.left, p.top, p.left + p.width, p.top + p.height};
    }
    void PutMedia(std::int32_t width, std::int32_t height) {
        sim::Package package;
        package.lengthMs = 9000;
        package.width = width;
        package.height = height;
        package.keyFrames = {0};
        world.ksLib.Put(kPackage, package);
    }
    /// The user accepts the large frame as it is.
    void AcceptLargeFrame() { world.presenter.PressEnter(u"frmLargeCapSize"); }
};

TEST_F(Capture, NarrowSlideOnAWideScreen_IsCentred_WithMasksLeftAndRight) {
    world.monitors.SetSingle(1280, 720);
    Slide(720, 540);
    EXPECT_TRUE(Check());
    EXPECT_EQ(Area(), (host::Rect{160, 0, 1119, 719}));
    EXPECT_EQ(MaskArea(u"frmMask1"), (host::Rect{0, 0, 160, 720}));
    EXPECT_EQ(MaskArea(u"frmMask2"), (host::Rect{1120, 0, 1280, 720}));
}

TEST_F(Capture, FourToThreeOnFullHd_Is1440Wide_240FromTheLeft) {
    world.monitors.SetSingle(1920, 1080);
    Slide(720, 540);
    session.display.g_ScreenWidth = 1920;
    session.display.g_ScreenHeight = 1080;
    modRegion::SlideRegion(session.c);
    EXPECT_EQ(session.display.g_RegionWidth, 1440);
    EXPECT_EQ(session.display.g_RegionHeight, 1080);
    PutMedia(1440, 1080);  // media of that size ask nothing
    EXPECT_TRUE(Check());
    EXPECT_EQ(Area(), (host::Rect{240, 0, 1679, 1079}));
    EXPECT_EQ(MaskArea(u"frmMask1"), (host::Rect{0, 0, 240, 1080}));
    EXPECT_EQ(MaskArea(u"frmMask2"), (host::Rect{1680, 0, 1920, 1080}));
}

TEST_F(Capture, WideSlideOnANarrowScreen_HasMasksAboveAndBelow) {
    world.monitors.SetSingle(1024, 768);
    EXPECT_TRUE(Check());
    EXPECT_EQ(Area(), (host::Rect{0, 96, 1023, 671}));
    EXPECT_EQ(MaskArea(u"frmMask1"), (host::Rect{0, 0, 1024, 96}));
    EXPECT_EQ(MaskArea(u"frmMask2"), (host::Rect{0, 672, 1024, 768}));
}

TEST_F(Capture, Screen1366By768_IsNoLargeFrame_AndItsMasksAreOnePixelWide) {
    world.monitors.SetSingle(1366, 768);
    EXPECT_TRUE(Check());
    EXPECT_EQ(session.display.g_RegionWidth, 1364);
    EXPECT_EQ(session.display.g_RegionHeight, 768);
    EXPECT_EQ(Area(), (host::Rect{1, 0, 1364, 767}));
    EXPECT_EQ(MaskArea(u"frmMask1"), (host::Rect{0, 0, 1, 768}));
    EXPECT_EQ(MaskArea(u"frmMask2"), (host::Rect{1365, 0, 1366, 768}));
}

TEST_F(Capture, EqualRatio_NeedsNoMasks) {
    EXPECT_TRUE(Check());
    EXPECT_EQ(Area(), (host::Rect{0, 0, 1279, 719}));
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmMask1"));
}

TEST_F(Capture, MediaOfWidth1366_MatchARegionOf1364) {
    world.monitors.SetSingle(1366, 768);
    PutMedia(1366, 768);
    EXPECT_TRUE(Check());
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(Capture, MediaOfAnotherSize_AreAskedAbout_AndCancelFails) {
    PutMedia(800, 600);
    world.box.Answer(host::BoxAnswer::No);
    EXPECT_FALSE(Check());
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmMask1"));
}

TEST_F(Capture, LargeFrame_OffersALowerResolutionFirst_AndCancelFails) {
    world.monitors.SetSingle(1600, 900);
    world.presenter.Do(u"frmLargeCapSize", u"cancel", [](ui::Form& form) { form.CloseByUser(); });
    EXPECT_FALSE(Check());
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

TEST_F(Capture, SecondMonitor_GivesSizeAndOffset) {
    world.monitors.SetSingle(1920, 1080);
    auto second = world.monitors.AddRight(1024, 768);
    EXPECT_TRUE(Check(1920 * 72.0F / 96, 0));
    EXPECT_EQ(session.display.g_Monitor, second);
    EXPECT_EQ(Area(), (host::Rect{1920, 96, 2943, 671}));
}

TEST_F(Capture, PositionOutsideAllMonitors_IsRefused) {
    EXPECT_FALSE(Check(5000, 0));
    EXPECT_EQ(Boxes(), std::vector<std::string>{"Could not find selected monitor!"});
}

TEST_F(Capture, ColourDepth8_IsRefusedWithItsNumber) {
    world.monitors.bitsPerPixel = 8;
    EXPECT_FALSE(Check());
    EXPECT_EQ(Boxes(), std::vector<std::string>{
                           "Kestrum does not support 8bits color depth. (16, 24 or 32 bits are supported)"});
}

TEST_F(Capture, OddRatioWithoutTheSetting_AsksWhetherTheSlideAloneIsRecorded) {
    Set(u"chkSldRgnOnly", u"0");
    Slide(720, 540);
    world.box.Answer(host::BoxAnswer::Yes);
    EXPECT_TRUE(Check());
    EXPECT_EQ(session.display.g_RegionWidth, 960);
    EXPECT_EQ(world.box.Shown()[0].buttons, host::BoxButtons::YesNo);
    world.box.Answer(host::BoxAnswer::No);
    EXPECT_TRUE(Check());
    EXPECT_EQ(Area(), (host::Rect{0, 0, 1279, 719}));
}

TEST_F(Capture, PackageOfTheLargestSize_Passes_OneByteMoreDoesNot) {
    PutMedia(1280, 720);
    world.fs.SetReportedSize(kPackage, 1932735283);
    EXPECT_TRUE(modCapture::CheckMaxSize(session.c, 0));
    EXPECT_FALSE(modCapture::CheckMaxSize(session.c, 1));
    EXPECT_TRUE(Boxes().back().find("1.8") != std::string::npos) << Boxes().back();
    world.fs.SetReportedSize(kPackage, 1932735284);
    EXPECT_FALSE(modCapture::CheckMaxSize(session.c, 0));
}

TEST_F(Capture, MissingOrEmptyPackage_HasNoLimit) {
    EXPECT_TRUE(modCapture::CheckMaxSize(session.c, modCapture::kLargestPackage + 1));
    world.ksLib.Put(kPackage, sim::Package());
    EXPECT_TRUE(modCapture::CheckMaxSize(session.c, modCapture::kLargestPackage + 1));
}

}  // namespace
}  // namespace kestrum
