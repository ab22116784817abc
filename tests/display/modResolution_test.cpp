#include "display/modResolution.h"

#include <gtest/gtest.h>

#include "DisplayWorld.h"
#include "display/frmDiffCapSize.h"
#include "display/frmLargeCapSize.h"

namespace kestrum {
namespace {

using host::BoxAnswer;
using modRegion::Size;
using test::DisplayWorld;

class ResolutionTest : public testing::Test {
  protected:
    void PutTexts() {
        w.world.fs.Put(u"/opt/kestrum/res.xml",
                       "<r><s name='frmLargeCapSize'><e name='frmLargeCapSize'>Large</e><e name='optRcmdRes'>To %s</e>"
                       "<e name='optCurrRes'>Keep</e></s><s name='frmDiffCapSize'><e name='optCurrRes'>Keep %s</e>"
                       "<e name='optOriRes'>To %s</e></s></r>");
    }
    bool Survey() { return modResolution::SurveyResolution(w.c, 0); }

    DisplayWorld w;
};

// --- Survey --------------------------------------------------------------------------------------------------------

TEST_F(ResolutionTest, Survey_PrefersTheModeOf720LinesWithTheSameRatio) {
    w.SetModes({1920, 1080}, {{1024, 768}, {1366, 768}, {1280, 720}, {1920, 1080}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Largest(), (Size{1920, 1080}));
    EXPECT_EQ(w.Recommended(), (Size{1280, 720}));
}

TEST_F(ResolutionTest, Survey_OfEightToFiveWithoutACommonMode_TakesTheWidestInsideItsBound) {
    w.SetModes({1920, 1200}, {{1920, 1200}, {1920, 1080}, {1280, 720}, {1280, 768}, {1152, 864}, {1024, 768}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Recommended(), (Size{1280, 768}));
}

TEST_F(ResolutionTest, Survey_OfEightToFiveWith1280By800_TakesIt) {
    w.SetModes({1920, 1200}, {{1920, 1200}, {1280, 720}, {1280, 800}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Recommended(), (Size{1280, 800}));
}

TEST_F(ResolutionTest, Survey_OfAFourToThreeMonitor_Finds1024By768) {
    w.SetModes({1600, 1200}, {{1600, 1200}, {1280, 1024}, {1024, 768}, {800, 600}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Recommended(), (Size{1024, 768}));
}

TEST_F(ResolutionTest, Survey_OfAWideMonitorWithoutACommonMode_IsBoundBy1366By768) {
    w.SetModes({3440, 1440}, {{3440, 1440}, {1920, 1080}, {1366, 768}, {1280, 800}, {1360, 768}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Recommended(), (Size{1366, 768}));
}

TEST_F(ResolutionTest, Survey_OfANarrowMonitorWithoutACommonMode_IsBoundBy1024By768) {
    w.SetModes({1280, 1024}, {{1280, 960}, {1280, 1000}, {1024, 600}, {1024, 700}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Largest(), (Size{1280, 1000}));
    EXPECT_EQ(w.Recommended(), (Size{1024, 700})) << "the tallest of the widest";
}

TEST_F(ResolutionTest, Survey_IgnoresModesOfAnotherDepthOrRate) {
    w.SetModes({1920, 1080}, {{1920, 1080}, {1280, 720}});
    auto& modes = w.world.monitors.all.front().modes;
    modes.push_back({3840, 2160, 16, 60});
    modes.push_back({2560, 1440, 32, 30});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Largest(), (Size{1920, 1080}));
}

TEST_F(ResolutionTest, Survey_OfAMonitorWhoseModesAreNotTold_RecommendsNone_NotThatOfAnother) {
    w.SetModes({1920, 1080}, {{1920, 1080}, {1280, 720}});
    ASSERT_TRUE(Survey());
    w.SetModes({1280, 1024}, {});
    EXPECT_TRUE(Survey());
    EXPECT_EQ(w.Recommended(), Size{});
    EXPECT_EQ(w.Largest(), Size{});
}

TEST_F(ResolutionTest, Survey_OfAnUnknownMonitor_IsFalseAndLeavesTheValues) {
    w.display.g_MaxResWidth = 7;
    EXPECT_FALSE(modResolution::SurveyResolution(w.c, 4711));
    EXPECT_EQ(w.display.g_MaxResWidth, 7);
}

TEST_F(ResolutionTest, Survey_WhenNoModeFitsTheBound_RecommendsNone) {
    w.SetModes({1920, 1080}, {{1920, 1080}});
    ASSERT_TRUE(Survey());
    EXPECT_EQ(w.Recommended(), Size{});
}

// --- frmLargeCapSize -----------------------------------------------------------------------------------------------

class LargeCapSizeTest : public ResolutionTest {
  protected:
    void SetUp() override {
        PutTexts();
        w.SetModes({1920, 1080}, {{1920, 1080}, {1280, 720}});
        ASSERT_TRUE(Survey());
    }
};

TEST_F(LargeCapSizeTest, Continue_KeepsTheCurrentSize) {
    w.world.presenter.Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(w.InForce(), (Size{1920, 1080}));
    EXPECT_FALSE(w.forms.IsFormLoaded(u"frmLargeCapSize"));
}

TEST_F(LargeCapSizeTest, PickingAnOption_AppliesItAtOnceAndContinueKeepsIt) {
    Size picked, back;
    w.world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes")
        .Do(u"frmLargeCapSize", u"look", [&](ui::Form&) { picked = w.InForce(); })
        .Click(u"frmLargeCapSize", u"optCurrRes")
        .Do(u"frmLargeCapSize", u"look", [&](ui::Form&) { back = w.InForce(); })
        .Click(u"frmLargeCapSize", u"optRcmdRes")
        .Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(picked, (Size{1280, 720}));
    EXPECT_EQ(back, (Size{1920, 1080}));
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
}

TEST_F(LargeCapSizeTest, Cancel_AfterAChange_RestoresTheEntrySize) {
    w.world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdCancel");
    EXPECT_FALSE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(w.InForce(), (Size{1920, 1080}));
}

TEST_F(LargeCapSizeTest, ClosingTheWindow_IsACancel) {
    w.world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").UserCloses(u"frmLargeCapSize");
    EXPECT_FALSE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(w.InForce(), (Size{1920, 1080}));
}

TEST_F(LargeCapSizeTest, WhenTheMonitorRefuses_TheDialogGoesOn) {
    w.world.monitors.all.front().refusesChanges = true;
    w.world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(w.InForce(), (Size{1920, 1080}));
}

TEST_F(LargeCapSizeTest, ASecondOffer_StartsAfresh) {
    w.world.presenter.Click(u"frmLargeCapSize", u"optRcmdRes").Click(u"frmLargeCapSize", u"cmdContinue");
    ASSERT_TRUE(modResolution::OfferLowerResolution(w.c));
    w.world.presenter.Click(u"frmLargeCapSize", u"cmdCancel");
    EXPECT_FALSE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(w.InForce(), (Size{1280, 720})) << "the size at the second entry";
}

TEST_F(LargeCapSizeTest, ShowsTheRecommendedSizeAndThePicturesOfTheLanguage) {
    w.world.fs.Put(u"/opt/kestrum/help/lang.txt", "cht traditional\r\n");
    String caption, high, low;
    w.world.presenter
        .Do(u"frmLargeCapSize", u"look",
            [&](ui::Form& form) {
                auto& dialog = static_cast<frmLargeCapSize&>(form);
                caption = dialog.optRcmdRes.Caption();
                high = dialog.picHigh.File();
                low = dialog.picLow.File();
            })
        .Click(u"frmLargeCapSize", u"cmdCancel");
    modResolution::OfferLowerResolution(w.c);
    EXPECT_EQ(caption, u"To 1280x720");
    EXPECT_EQ(high, u"/opt/kestrum/pictures/HI_TW.png");
    EXPECT_EQ(low, u"/opt/kestrum/pictures/LO_TW.png");
}

TEST_F(LargeCapSizeTest, WithoutALanguageFile_ShowsTheEnglishPictures) {
    String high;
    w.world.presenter
        .Do(u"frmLargeCapSize", u"look",
            [&](ui::Form& form) { high = static_cast<frmLargeCapSize&>(form).picHigh.File(); })
        .Click(u"frmLargeCapSize", u"cmdCancel");
    modResolution::OfferLowerResolution(w.c);
    EXPECT_EQ(high, u"/opt/kestrum/pictures/HI_EN.png");
}

TEST_F(LargeCapSizeTest, WithoutARecommendedMode_OffersNone) {
    w.SetModes({1920, 1080}, {{1920, 1080}});
    ASSERT_TRUE(Survey());
    bool offered = true;
    w.world.presenter
        .Do(u"frmLargeCapSize", u"look",
            [&](ui::Form& form) { offered = static_cast<frmLargeCapSize&>(form).optRcmdRes.Visible(); })
        .Click(u"frmLargeCapSize", u"cmdContinue");
    EXPECT_TRUE(modResolution::OfferLowerResolution(w.c));
    EXPECT_FALSE(offered);
}

TEST_F(LargeCapSizeTest, WhenTheSizeCannotBeRead_SaysSo) {
    w.display.g_Monitor = 4711;
    w.world.presenter.Click(u"frmLargeCapSize", u"cmdCancel");
    modResolution::OfferLowerResolution(w.c);
    EXPECT_TRUE(
        w.world.box.WasShown(u"Kestrum cannot get monitor resolution. Please report this error to Kestrum developer."));
}

TEST_F(LargeCapSizeTest, WhenTheMonitorChangesMeanwhile_CancelBringsTheEntrySizeBack) {
    w.world.presenter
        .Do(u"frmLargeCapSize", u"the desktop changes the mode",
            [&](ui::Form&) { w.world.monitors.ChangeMode(0, 1280, 720); })
        .Click(u"frmLargeCapSize", u"cmdCancel");
    EXPECT_FALSE(modResolution::OfferLowerResolution(w.c));
    EXPECT_EQ(w.InForce(), (Size{1920, 1080}));
}

// --- Media of another frame size -----------------------------------------------------------------------------------

class DiffCapSizeTest : public LargeCapSizeTest {
  protected:
    void SetUp() override {
        LargeCapSizeTest::SetUp();
        w.display.g_SlideWidthPt = 720;
        w.display.g_SlideHeightPt = 540;
        w.display.g_RegionWidth = 1440;
        w.display.g_RegionHeight = 1080;
    }
};

TEST_F(DiffCapSizeTest, MediaOfTheRecommendedSize_OpensTheDialog) {
    String current, original;
    w.world.presenter
        .Do(u"frmDiffCapSize", u"look",
            [&](ui::Form& form) {
                auto& dialog = static_cast<frmDiffCapSize&>(form);
                current = dialog.optCurrRes.Caption();
                original = dialog.optOriRes.Caption();
            })
        .Click(u"frmDiffCapSize", u"optOriRes")
        .Click(u"frmDiffCapSize", u"cmdContinue");
    EXPECT_TRUE(modResolution::ResolveDifferentFrameSize(w.c, {1280, 720}));
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
    EXPECT_EQ(current, u"Keep 1920x1080");
    EXPECT_EQ(original, u"To 1280x720");
}

TEST_F(DiffCapSizeTest, MediaOfTheSlideRegionInTheRecommendedMode_OpensTheDialog) {
    w.world.presenter.Click(u"frmDiffCapSize", u"optOriRes").Click(u"frmDiffCapSize", u"cmdCancel");
    EXPECT_FALSE(modResolution::ResolveDifferentFrameSize(w.c, {960, 720}));
    EXPECT_EQ(w.InForce(), (Size{1920, 1080}));
}

TEST_F(DiffCapSizeTest, MediaThatNoResolutionFits_IsAskedAboutAndMayPass) {
    w.world.fs.Put(u"/opt/kestrum/res.xml",
                   "<r><s name='frmCommon'><e name='msgDiffRes'>Region %s1, media %s2?</e></s></r>");
    w.world.box.Answer(BoxAnswer::No);
    w.world.box.Answer(BoxAnswer::Yes);
    w.support.language.reset();
    EXPECT_FALSE(modResolution::ResolveDifferentFrameSize(w.c, {640, 480}));
    EXPECT_TRUE(modResolution::ResolveDifferentFrameSize(w.c, {640, 480}));
    ASSERT_EQ(w.world.box.Shown().size(), 2U);
    EXPECT_EQ(w.world.box.Shown()[0].text, u"Region 1440x1080, media 640x480?");
    EXPECT_EQ(w.world.box.Shown()[0].buttons, host::BoxButtons::YesNo);
}

// --- Centring ------------------------------------------------------------------------------------------------------

TEST_F(ResolutionTest, CenterOnMonitor_PutsAFormInTheMiddleOfItsMonitor) {
    const host::MonitorHandle second = w.world.monitors.AddRight(1280, 1024);
    auto& form = w.forms.Get<frmDiffCapSize>(w.c);
    modResolution::CenterOnMonitor(w.c, form, second);
    EXPECT_EQ(form.Place().start, ui::StartPosition::CentreArea);
    EXPECT_EQ(form.Place().area, (host::Rect{1920, 0, 3200, 1024}));
    modResolution::CenterOnMonitor(w.c, form, 4711);
    EXPECT_EQ(form.Place().start, ui::StartPosition::CentreScreen) << "an unknown monitor";
}

}  // namespace
}  // namespace kestrum
