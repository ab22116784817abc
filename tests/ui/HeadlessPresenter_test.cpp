// The scripted user: acts run in order, nested and delayed ones too, and a script that does not fit fails.
#include "ui/HeadlessPresenter.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "ui/Forms.h"

namespace kestrum {
namespace {

struct Context {
    ui::Forms& forms;
};

class frmInner : public ui::Form {
  public:
    explicit frmInner(const Context& c) : Form(c.forms, u"frmInner") {
        cmdClose.onClick = [this] { Unload(); };
    }
    ui::CommandButton cmdClose{*this, u"cmdClose"};
};

class frmOuter : public ui::Form {
  public:
    explicit frmOuter(const Context& c) : Form(c.forms, u"frmOuter") {
        cmdAsk.onClick = [c] { c.forms.Get<frmInner>(c).ShowModal(); };
        cmdClose.onClick = [this] { Unload(); };
        tmrWork.onTimer = [this] {
            if (++steps == 5) cmdClose.SetEnabled(true);
        };
    }
    ui::CommandButton cmdAsk{*this, u"cmdAsk"};
    ui::CommandButton cmdClose{*this, u"cmdClose"};
    ui::Timer tmrWork{*this, u"tmrWork", 200};
    int steps = 0;
};

class HeadlessPresenterTest : public ::testing::Test {
  protected:
    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    Context context{forms};
    frmOuter& outer() { return forms.Get<frmOuter>(context); }
    using Lines = std::vector<String>;
};

TEST_F(HeadlessPresenterTest, NestedModalForms_AreAnsweredFromInsideOut) {
    world.presenter.Click(u"frmOuter", u"cmdAsk").Click(u"frmInner", u"cmdClose").Click(u"frmOuter", u"cmdClose");
    outer().ShowModal();
    EXPECT_EQ(world.presenter.Transcript(),
              (Lines{u"modal frmOuter", u"click frmOuter.cmdAsk", u"modal frmInner", u"click frmInner.cmdClose",
                     u"close frmInner", u"click frmOuter.cmdClose", u"close frmOuter"}));
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

TEST_F(HeadlessPresenterTest, AnActOnAFormBelowAModalOne_WaitsUntilThatIsGone) {
    world.presenter.Click(u"frmOuter", u"cmdClose");
    world.loop.After(300, [&] { forms.Get<frmInner>(context).Unload(); });
    outer().Show();
    forms.Get<frmInner>(context).ShowModal();
    EXPECT_TRUE(outer().IsLoaded());
    world.loop.Advance(1);
    EXPECT_FALSE(outer().IsLoaded());
}

TEST_F(HeadlessPresenterTest, ADelayedAct_RunsAfterItsTime) {
    world.presenter.Click(u"frmOuter", u"cmdClose").After(1500);
    outer().ShowModal();
    EXPECT_EQ(world.loop.Elapsed(), 1500);
}

TEST_F(HeadlessPresenterTest, AConditionalAct_RunsWhenItsConditionHolds) {
    outer().cmdClose.SetEnabled(false);
    outer().tmrWork.SetEnabled(true);
    world.presenter.Click(u"frmOuter", u"cmdClose").When([](ui::Form& form) {
        return form.FindControl(u"cmdClose")->Enabled();
    });
    frmOuter& form = outer();
    form.ShowModal();
    EXPECT_EQ(form.steps, 5);
}

TEST_F(HeadlessPresenterTest, AnUnansweredModalForm_FailsTheTest) {
    world.presenter.SetPatience(5000);
    outer().tmrWork.SetEnabled(true);
    EXPECT_THROW(outer().ShowModal(), std::logic_error);
}

TEST_F(HeadlessPresenterTest, AnUnansweredModalForm_WithNothingToWaitFor_FailsTheTest) {
    EXPECT_THROW(outer().ShowModal(), std::logic_error);
}

TEST_F(HeadlessPresenterTest, AClickOnADisabledOrMissingControl_FailsTheTest) {
    outer().cmdClose.SetEnabled(false);
    world.presenter.Click(u"frmOuter", u"cmdClose");
    EXPECT_THROW(outer().ShowModal(), std::logic_error);
    world.presenter.Click(u"frmOuter", u"cmdNothing");
    EXPECT_THROW(world.loop.Advance(10), std::logic_error);
}

TEST_F(HeadlessPresenterTest, ActsThatNeverRan_AreTold) {
    world.presenter.Click(u"frmOuter", u"cmdClose").Click(u"frmInner", u"cmdClose");
    outer().ShowModal();
    EXPECT_EQ(world.presenter.LeftOverActs(), Lines{u"click frmInner.cmdClose"});
}

TEST_F(HeadlessPresenterTest, ClosingInVain_MustBeRefusedByTheForm) {
    ui::WindowStyle style;
    style.closable = false;
    outer().SetStyle(style);
    world.presenter.UserClosesInVain(u"frmOuter").Click(u"frmOuter", u"cmdClose");
    outer().ShowModal();
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

}  // namespace
}  // namespace kestrum
