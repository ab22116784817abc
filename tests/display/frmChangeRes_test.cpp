// The command that changes the display mode.
#include "display/frmChangeRes.h"

#include <gtest/gtest.h>

#include "DisplayWorld.h"
#include "display/modResolution.h"

namespace kestrum {
namespace {

using modRegion::Size;
using Captions = std::vector<String>;

struct ChangeResTest : testing::Test {
    ChangeResTest() {
        w.world.fs.Put(u"/opt/kestrum/res.xml",
                       "<r><s name='frmChangeRes'><e name='frmChangeRes'>Resolution</e><e name='optCurrRes'>Now %s</e>"
                       "<e name='optRcmdRes'>Best %s</e><e name='optMaxRes'>Largest %s</e></s></r>");
        w.SetModes({1600, 900}, {{1600, 900}, {1280, 720}, {1920, 1080}});
    }
    ChangeResTest& Click(const String& control) {
        w.world.presenter.Click(u"frmChangeRes", control);
        return *this;
    }
    ChangeResTest& Look(std::function<void(frmChangeRes&)> look) {
        w.world.presenter.Do(u"frmChangeRes", u"look",
                             [look](ui::Form& form) { look(static_cast<frmChangeRes&>(form)); });
        return *this;
    }
    ChangeResTest& NoteSize() {
        return Look([this](frmChangeRes&) { sizes.push_back(w.InForce()); });
    }
    void Run() {
        modResolution::ChangeResolution(w.c);
        EXPECT_TRUE(w.world.presenter.LeftOverActs().empty());
    }

    test::DisplayWorld w;
    std::vector<Size> sizes;
};

TEST_F(ChangeResTest, ShowsTheSizeAtEntry_TheRecommendedOneAndTheLargest) {
    Captions captions;
    Look([&](frmChangeRes& form) {
        captions = {form.Caption(), form.optCurrRes.Caption(), form.optRcmdRes.Caption(), form.optMaxRes.Caption()};
        EXPECT_TRUE(form.optCurrRes.Value());
    });
    Click(u"cmdExit").Run();
    EXPECT_EQ(captions, (Captions{u"Resolution", u"Now 1600x900", u"Best 1280x720", u"Largest 1920x1080"}));
    EXPECT_EQ(w.InForce(), (Size{1600, 900}));
}

TEST_F(ChangeResTest, EachPick_IsInForceAtOnce_AndExitKeepsTheLast) {
    Click(u"optMaxRes").NoteSize().Click(u"optCurrRes").NoteSize().Click(u"optRcmdRes").NoteSize().Click(u"cmdExit");
    Run();
    EXPECT_EQ(sizes, (std::vector<Size>{{1920, 1080}, {1600, 900}, {1280, 720}}));
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
}

TEST_F(ChangeResTest, ClosingTheWindow_KeepsTheDisplayAsItIs) {
    Click(u"optRcmdRes");
    w.world.presenter.UserCloses(u"frmChangeRes");
    Run();
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
}

TEST_F(ChangeResTest, Escape_KeepsTheDisplayAsItIs) {
    Click(u"optRcmdRes");
    w.world.presenter.PressEscape(u"frmChangeRes");
    Run();
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
}

TEST_F(ChangeResTest, AfterAPick_StandsInTheMiddleOfTheNewScreen) {
    host::Rect before, after;
    Look([&](frmChangeRes& form) { before = form.Place().area; });
    Click(u"optRcmdRes");
    Look([&](frmChangeRes& form) {
        EXPECT_EQ(form.Place().start, ui::StartPosition::CentreArea);
        after = form.Place().area;
    });
    Click(u"cmdExit").Run();
    EXPECT_EQ(before, (host::Rect{0, 0, 1600, 900}));
    EXPECT_EQ(after, (host::Rect{0, 0, 1280, 720}));
}

TEST_F(ChangeResTest, ASizeInForce_IsNotAppliedAgain) {
    Click(u"optCurrRes").Click(u"cmdExit").Run();
    EXPECT_FALSE(w.world.transcript.Has(u"monitors.ChangeMode"));
}

TEST_F(ChangeResTest, WhenTheMonitorRefuses_TheDialogGoesOn) {
    w.world.monitors.all.front().refusesChanges = true;
    Click(u"optRcmdRes").Click(u"cmdExit").Run();
    EXPECT_EQ(w.InForce(), (Size{1600, 900}));
}

TEST_F(ChangeResTest, ChangesTheDefaultMonitor_NotTheOneRecordedLast) {
    w.display.g_Monitor = w.world.monitors.AddRight(1280, 1024);
    Click(u"optRcmdRes").Click(u"cmdExit").Run();
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
    const auto second = w.world.monitors.CurrentMode(w.display.g_Monitor);
    EXPECT_EQ(second->width, 1280);
    EXPECT_EQ(second->height, 1024);
}

TEST_F(ChangeResTest, AMonitorThatCannotBeRead_IsTold_AndOffersNothing) {
    w.world.monitors.all.clear();
    bool offered = true;
    Look([&](frmChangeRes& form) {
        offered = form.optCurrRes.Visible() || form.optRcmdRes.Visible() || form.optMaxRes.Visible();
    });
    Click(u"cmdExit").Run();
    EXPECT_FALSE(offered);
    EXPECT_TRUE(
        w.world.box.WasShown(u"Kestrum cannot get monitor resolution. Please report this error to Kestrum developer."));
}

TEST_F(ChangeResTest, ASecondCommandWhileTheDialogIsUp_DoesNothing) {
    Look([&](frmChangeRes&) { modResolution::ChangeResolution(w.c); });
    Click(u"optRcmdRes").Click(u"cmdExit").Run();
    EXPECT_EQ(w.InForce(), (Size{1280, 720}));
}

}  // namespace
}  // namespace kestrum
