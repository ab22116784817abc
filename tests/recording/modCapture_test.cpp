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

TEST_F(Capture, MonitorLeftOfThePrimaryOne_GivesItsNegativeOffset) {
    auto second = world.monitors.AddRight(1024, 768);
    world.monitors.Find(second)->rect = {-1024, 0, 0, 768};
    EXPECT_TRUE(Check(-1024 * 72.0F / 96, 0));
    EXPECT_EQ(session.display.g_Monitor, second);
    EXPECT_EQ(Area(), (host::Rect{-1024, 96, -1, 671}));
    EXPECT_EQ(MaskArea(u"frmMask2"), (host::Rect{-1024, 672, 0, 768}));
}

TEST_F(Capture, PositionInPoints_IsRoundedToTheNearestPixel) {
    world.monitors.AddRight(1024, 768);
    world.monitors.pixelsPerInch = 144;
    EXPECT_TRUE(Check(639.7F, 0));  // 1279.4: the last column of the first monitor
    EXPECT_EQ(session.display.g_ScreenWidth, 1280);
    EXPECT_TRUE(Check(639.8F, 0));  // 1279.6: the first column of the second one
    EXPECT_EQ(session.display.g_ScreenWidth, 1024);
}

TEST_F(Capture, PositionOutsideAllMonitors_IsRefused) {
    EXPECT_FALSE(Check(5000, 0));
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmMask1"));
    EXPECT_EQ(Boxes(), std::vector<std::string>{"Could not find selected monitor!"});
}

TEST_F(Capture, ColourDepth8_IsRefusedWithItsNumber) {
    world.monitors.bitsPerPixel = 8;
    EXPECT_FALSE(Check());
    EXPECT_EQ(Boxes(), std::vector<std::string>{
                           "Kestrum does not support 8bits color depth. (16, 24 or 32 bits are supported)"});
}

TEST_F(Capture, ColourDepths16_24And32_AreRecorded) {
    for (const std::int32_t depth : {16, 24, 32}) {
        world.monitors.bitsPerPixel = depth;
        EXPECT_TRUE(Check()) << depth;
    }
}

TEST_F(Capture, MonitorWithoutASize_IsRefused) {
    world.monitors.all.front().hidesMode = true;
    EXPECT_FALSE(Check());
    EXPECT_EQ(Boxes(), std::vector<std::string>{"Kestrum cannot get monitor resolution. Please report this error to "
                                                "Kestrum developer."});
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmMask1"));
}

// --- the size: every way through -----------------------------------------------------------------------------------

struct CaptureSize : Capture {
    using Size = modRegion::Size;

    /// A monitor of `current` that has these modes as well.
    void Monitor(Size current, const std::vector<Size>& sizes) {
        world.monitors.SetSingle(current.width, current.height);
        auto& modes = world.monitors.all.front().modes;
        modes = {{current.width, current.height, 32, 60}};
        for (const Size size : sizes) modes.push_back({size.width, size.height, 32, 60});
    }
    Size Region() const { return {session.display.g_RegionWidth, session.display.g_RegionHeight}; }
    Size Screen() const { return {session.display.g_ScreenWidth, session.display.g_ScreenHeight}; }
    void ExpectAllUsed() { EXPECT_TRUE(world.presenter.LeftOverActs().empty()); }
};

TEST_F(CaptureSize, LargeFrame_AtALowerResolution_IsRecordedAtThat) {
    Monitor({1600, 900}, {{1280, 720}});
    Slide(720, 540);
    world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    ExpectAllUsed();
    EXPECT_EQ(Screen(), (Size{1280, 720}));
    EXPECT_EQ(Area(), (host::Rect{160, 0, 1119, 719}));
}

TEST_F(CaptureSize, LargeFrame_KeptByItsUser_IsRecordedAsItIs) {
    Monitor({1600, 900}, {{1280, 720}});
    AcceptLargeFrame();
    EXPECT_TRUE(Check());
    ExpectAllUsed();
    EXPECT_EQ(Area(), (host::Rect{0, 0, 1599, 899}));
}

TEST_F(CaptureSize, FramesAtTheLimits_AreNotLarge) {
    for (const Size screen : {Size{1366, 768}, Size{1280, 800}, Size{1280, 720}}) {
        Monitor(screen, {});
        Slide(screen.width, screen.height);
        EXPECT_TRUE(Check()) << screen.width;
    }
    ExpectAllUsed();
}

TEST_F(CaptureSize, FramesTallerOrWiderThanTheLimits_AreLarge) {
    for (const Size screen : {Size{1024, 804}, Size{1368, 600}, Size{1280, 820}}) {
        Monitor(screen, {});
        Slide(screen.width, screen.height);
        AcceptLargeFrame();
        EXPECT_TRUE(Check()) << screen.width;
        ExpectAllUsed();
    }
}

TEST_F(CaptureSize, WholeScreenByTheSetting_StaysTheWholeScreen_AtAResolutionOfAnotherRatio) {
    Set(u"chkSldRgnOnly", u"0");
    Monitor({1920, 1080}, {{1280, 768}});
    world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    ExpectAllUsed();
    EXPECT_TRUE(Boxes().empty()) << "slide and screen have one ratio: nothing to ask";
    EXPECT_EQ(Region(), (Size{1280, 768}));
}

TEST_F(CaptureSize, WholeScreenByTheUsersChoice_StaysTheWholeScreen_AtALowerResolution) {
    Set(u"chkSldRgnOnly", u"0");
    Monitor({1600, 900}, {{1280, 720}});
    Slide(720, 540);
    world.box.Answer(host::BoxAnswer::No);
    world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    EXPECT_EQ(Region(), (Size{1280, 720}));
}

TEST_F(CaptureSize, SlideAloneByTheUsersChoice_StaysTheSlide_AtALowerResolution) {
    Set(u"chkSldRgnOnly", u"0");
    Monitor({1920, 1080}, {{1280, 720}});
    Slide(720, 540);
    world.box.Answer(host::BoxAnswer::Yes);
    world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    EXPECT_EQ(Region(), (Size{960, 720}));
}

TEST_F(CaptureSize, MediaOfTheRecommendedSize_AreMatchedByItsMode) {
    Monitor({1920, 1080}, {{1280, 720}});
    PutMedia(1280, 720);
    world.presenter.Click(u"frmDiffCapSize", u"optOriRes").Click(u"frmDiffCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    ExpectAllUsed();
    EXPECT_EQ(Screen(), (Size{1280, 720}));
    EXPECT_EQ(Area(), (host::Rect{0, 0, 1279, 719}));
}

TEST_F(CaptureSize, MediaOfTheSlideInTheRecommendedMode_AreMatchedByIt) {
    Monitor({1920, 1080}, {{1280, 720}});
    Slide(720, 540);
    PutMedia(960, 720);
    world.presenter.Click(u"frmDiffCapSize", u"optOriRes").Click(u"frmDiffCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    EXPECT_EQ(Region(), (Size{960, 720}));
}

TEST_F(CaptureSize, MediaThatAModeWouldMatch_PassUnmatched_WhenTheUserKeepsTheResolution) {
    Monitor({1920, 1080}, {{1280, 720}});
    PutMedia(1280, 720);
    world.presenter.Click(u"frmDiffCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    EXPECT_EQ(Region(), (Size{1920, 1080})) << "media ask for no lower resolution";
}

TEST_F(CaptureSize, MediaThatAModeWouldMatch_AndCancel_FailWithTheOldMode) {
    Monitor({1920, 1080}, {{1280, 720}});
    PutMedia(1280, 720);
    world.presenter.Click(u"frmDiffCapSize", u"optOriRes").Click(u"frmDiffCapSize", u"cmdCancel");
    EXPECT_FALSE(Check());
    EXPECT_EQ(world.monitors.CurrentMode(0)->width, 1920);
}

TEST_F(CaptureSize, MediaThatNothingMatches_AreAskedAboutWithBothSizes_AndMayPass) {
    PutMedia(640, 480);
    world.box.Answer(host::BoxAnswer::Yes);
    EXPECT_TRUE(Check());
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("1280x720"), std::string::npos) << Boxes()[0];
    EXPECT_NE(Boxes()[0].find("640x480"), std::string::npos) << Boxes()[0];
}

TEST_F(CaptureSize, MediaWithTheWholeScreenByTheSetting_AreAskedAboutFirst_ThenMatched) {
    Set(u"chkSldRgnOnly", u"0");
    Monitor({1920, 1080}, {{1280, 720}});
    Slide(720, 540);
    PutMedia(1280, 720);
    world.box.Answer(host::BoxAnswer::No);
    world.presenter.Click(u"frmDiffCapSize", u"optOriRes").Click(u"frmDiffCapSize", u"cmdContinue");
    EXPECT_TRUE(Check());
    EXPECT_EQ(Region(), (Size{1280, 720})) << "the whole new screen, as the whole old one before";
}

TEST_F(CaptureSize, MediaOfTheWholeScreen_WantNoDialog_WhenThatIsRecorded) {
    Set(u"chkSldRgnOnly", u"0");
    Slide(720, 540);
    PutMedia(1280, 720);
    world.box.Answer(host::BoxAnswer::No);
    EXPECT_TRUE(Check());
    EXPECT_EQ(Region(), (Size{1280, 720}));
    EXPECT_EQ(Boxes().size(), 1U);
}

TEST_F(CaptureSize, MonitorUnpluggedWhileTheDialogIsUp_IsTold) {
    Monitor({1600, 900}, {{1280, 720}});
    world.presenter.Do(u"frmLargeCapSize", u"unplug", [this](ui::Form&) { world.monitors.all.clear(); })
        .Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_FALSE(Check());
    EXPECT_EQ(Boxes(), std::vector<std::string>{"Kestrum cannot get monitor resolution. Please report this error to "
                                                "Kestrum developer."});
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmMask1"));
}

TEST_F(CaptureSize, SlideWithoutASize_IsToldAndRefused) {
    Slide(960, 0);
    EXPECT_FALSE(Check());
    EXPECT_EQ(Boxes().size(), 1U);
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
