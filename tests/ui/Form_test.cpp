// The life of a form, its user acts, tab order and names, and timers on virtual time.
#include "ui/Form.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "ui/Forms.h"

namespace kestrum {
namespace {

struct Context {
    ui::Forms& forms;
    std::vector<String>& log;
};

class frmSample : public ui::Form {
  public:
    explicit frmSample(const Context& c) : Form(c.forms, u"frmSample"), m_log(c.log) {
        cmdOK.SetDefault(true);
        cmdCancel.SetCancel(true);
        cmdOK.onClick = [this] { m_log.push_back(u"OK"); };
        cmdCancel.onClick = [this] { Unload(); };
        chkLoud.onClick = [this] { m_log.push_back(chkLoud.Checked() ? u"loud" : u"quiet"); };
        txtName.onChange = [this] { m_log.push_back(u"name " + txtName.Text()); };
        cmbSize.onClick = [this] { m_log.push_back(u"size " + cmbSize.Text()); };
        sldVolume.onChange = [this] { m_log.push_back(u"volume"); };
        tmrBeat.onTimer = [this] { m_log.push_back(u"beat"); };
        cmbSize.AddItem(u"small");
        cmbSize.AddItem(u"large");
        lName.SetCaption(u"Name");
        SetCaption(u"Sample");
        SetLayout(ui::Column({ui::Field(lName, txtName), ui::Group(fraSound, {chkLoud, sldVolume}), cmbSize,
                              ui::Row({optA, optB}), ui::Buttons({cmdOK, cmdCancel})}));
    }

    // Declared in another order than they stand in.
    ui::CommandButton cmdCancel{*this, u"cmdCancel"};
    ui::CommandButton cmdOK{*this, u"cmdOK"};
    ui::Label lName{*this, u"lName"};
    ui::TextBox txtName{*this, u"txtName"};
    ui::Frame fraSound{*this, u"fraSound"};
    ui::CheckBox chkLoud{*this, u"chkLoud"};
    ui::Slider sldVolume{*this, u"sldVolume"};
    ui::ComboBox cmbSize{*this, u"cmbSize"};
    ui::OptionButton optA{*this, u"optA"};
    ui::OptionButton optB{*this, u"optB"};
    ui::Timer tmrBeat{*this, u"tmrBeat", 100};

    bool refuse = false;
    int field = 0;
    std::function<void()> whileUnloading;
    std::function<void()> whileLoading;

  protected:
    void OnLoad() override {
        m_log.push_back(u"load");
        if (whileLoading) whileLoading();
    }
    bool OnQueryUnload(ui::CloseReason reason) override {
        m_log.push_back(reason == ui::CloseReason::User ? u"query user" : u"query code");
        return !refuse;
    }
    void OnUnload() override {
        m_log.push_back(u"unload");
        if (whileUnloading) whileUnloading();
    }

  private:
    std::vector<String>& m_log;
};

class FormTest : public ::testing::Test {
  protected:
    sim::World world;
    std::vector<String> log;
    ui::Forms forms{world.presenter, world.loop};
    Context context{forms, log};
    frmSample& form() { return forms.Get<frmSample>(context); }
    using Log = std::vector<String>;
};

TEST_F(FormTest, Get_MakesOneFormAndDoesNotLoadIt) {
    EXPECT_EQ(&form(), &form());
    EXPECT_FALSE(form().IsLoaded());
    EXPECT_FALSE(forms.IsFormLoaded(u"frmSample"));
}

TEST_F(FormTest, Load_JoinsTheLoadedForms_WhateverTheLetterCase) {
    form().Load();
    form().Load();
    EXPECT_EQ(log, Log{u"load"});
    EXPECT_TRUE(forms.IsFormLoaded(u"FRMsample"));
    EXPECT_FALSE(form().IsVisible());
    EXPECT_EQ(forms.Count(), 1u);
}

TEST_F(FormTest, Unload_AsksThenRunsTheHandler_AndPutsTheDesignBack) {
    frmSample& f = form();
    f.Show();
    f.SetCaption(u"Changed");
    f.lName.SetCaption(u"Changed");
    f.txtName.SetText(u"Anna");
    f.chkLoud.SetValue(1);
    f.cmdOK.SetEnabled(false);
    f.field = 7;
    log.clear();
    EXPECT_TRUE(f.Unload());
    EXPECT_EQ(log, (Log{u"query code", u"unload"}));
    EXPECT_FALSE(f.IsLoaded());
    EXPECT_FALSE(f.IsVisible());
    EXPECT_EQ(f.Caption(), u"Sample");
    EXPECT_EQ(f.lName.Caption(), u"Name");
    EXPECT_EQ(f.txtName.Text(), u"");
    EXPECT_EQ(f.chkLoud.Value(), 0);
    EXPECT_TRUE(f.cmdOK.Enabled());
    EXPECT_EQ(f.field, 7) << "fields can be read after the form has gone";
}

TEST_F(FormTest, Get_AfterAnUnload_GivesAFreshForm) {
    form().Load();
    form().field = 7;
    form().Unload();
    EXPECT_EQ(form().field, 0);
}

TEST_F(FormTest, Get_WhileAHandlerOfTheUnloadedFormRuns_KeepsTheObject) {
    frmSample& f = form();
    f.cmdOK.onClick = [&] {
        f.Unload();
        EXPECT_EQ(&form(), &f);
        f.field = 3;
    };
    f.Show();
    f.Click(u"cmdOK");
    EXPECT_EQ(f.field, 3);
}

TEST_F(FormTest, Unload_WhenTheFormRefuses_KeepsItLoaded) {
    frmSample& f = form();
    f.Show();
    f.refuse = true;
    EXPECT_FALSE(f.Unload());
    EXPECT_TRUE(f.IsLoaded());
    EXPECT_TRUE(f.IsVisible());
    f.refuse = false;
    EXPECT_TRUE(f.Unload());
}

TEST_F(FormTest, Unload_AgainFromItsOwnHandler_DoesNothing) {
    frmSample& f = form();
    f.Load();
    f.whileUnloading = [&] { EXPECT_TRUE(f.Unload()); };
    log.clear();
    f.Unload();
    EXPECT_EQ(log, (Log{u"query code", u"unload"}));
}

TEST_F(FormTest, Unload_WhenItsHandlerFails_TakesTheFormDownAllTheSame) {
    frmSample& f = form();
    f.Show();
    f.whileUnloading = [] { throw host::Error(host::ErrorNumber::DiskFull, u"test", u"full"); };
    EXPECT_THROW(f.Unload(), host::Error);
    EXPECT_FALSE(f.IsLoaded());
    EXPECT_TRUE(world.presenter.OnScreen().empty());
}

TEST_F(FormTest, Show_OfAFormThatUnloadsItselfWhileItLoads_ShowsNothing) {
    frmSample& f = form();
    f.whileLoading = [&] { f.Unload(); };
    f.Show();
    f.ShowModal();
    EXPECT_TRUE(world.presenter.Transcript().empty());
}

class frmOther : public ui::Form {
  public:
    explicit frmOther(const Context& c) : Form(c.forms, u"frmOther"), m_log(c.log) {}

  protected:
    void OnUnload() override { m_log.push_back(u"other"); }

  private:
    std::vector<String>& m_log;
};

TEST_F(FormTest, UnloadAll_GoesFromTheLastToTheFirst_AndLeavesWhoRefuses) {
    form().Load();
    forms.Get<frmOther>(context).Load();
    form().refuse = true;
    log.clear();
    forms.UnloadAll();
    EXPECT_EQ(log, (Log{u"other", u"query code"}));
    EXPECT_TRUE(forms.IsFormLoaded(u"frmSample"));
    EXPECT_FALSE(forms.IsFormLoaded(u"frmOther"));
}

TEST_F(FormTest, TabOrder_FollowsTheLayout) {
    std::vector<String> names;
    for (ui::Control* control : form().TabOrder()) names.push_back(control->Name());
    EXPECT_EQ(names, (Log{u"txtName", u"chkLoud", u"sldVolume", u"cmbSize", u"optA", u"optB", u"cmdOK", u"cmdCancel"}));
}

TEST_F(FormTest, AccessibleName_ComesFromCaptionOrFieldLabel) {
    frmSample& f = form();
    f.cmdOK.SetCaption(u"Go");
    f.sldVolume.SetToolTip(u"How loud");
    EXPECT_EQ(f.AccessibleNameOf(f.txtName), u"Name");
    EXPECT_EQ(f.AccessibleNameOf(f.cmdOK), u"Go");
    EXPECT_EQ(f.AccessibleNameOf(f.sldVolume), u"How loud");
    f.sldVolume.SetAccessibleName(u"Volume");
    EXPECT_EQ(f.AccessibleNameOf(f.sldVolume), u"Volume");
}

TEST_F(FormTest, UserActs_OnAVisibleForm_ChangeTheControlAndRunItsHandler) {
    frmSample& f = form();
    f.Show();
    log.clear();
    EXPECT_TRUE(f.Click(u"chkLoud"));
    EXPECT_TRUE(f.Click(u"chkLoud"));
    EXPECT_TRUE(f.Type(u"txtName", u"Anna"));
    EXPECT_TRUE(f.Select(u"cmbSize", 1));
    EXPECT_TRUE(f.Slide(u"sldVolume", 140));
    EXPECT_EQ(log, (Log{u"loud", u"quiet", u"name Anna", u"size large", u"volume"}));
    EXPECT_EQ(f.sldVolume.Value(), 100);
}

TEST_F(FormTest, UserActs_AreRefusedByHiddenAndDisabledControls_AndByTheirFrames) {
    frmSample& f = form();
    EXPECT_FALSE(f.Click(u"cmdOK")) << "the form is not on screen";
    f.Show();
    log.clear();
    f.cmdOK.SetEnabled(false);
    EXPECT_FALSE(f.Click(u"cmdOK"));
    EXPECT_FALSE(f.PressEnter());
    f.cmdOK.SetEnabled(true);
    f.cmdOK.SetVisible(false);
    EXPECT_FALSE(f.Click(u"cmdOK"));
    f.fraSound.SetEnabled(false);
    EXPECT_FALSE(f.Click(u"chkLoud"));
    f.fraSound.SetEnabled(true);
    f.fraSound.SetVisible(false);
    EXPECT_FALSE(f.Slide(u"sldVolume", 3));
    f.txtName.SetReadOnly(true);
    EXPECT_FALSE(f.Type(u"txtName", u"x"));
    EXPECT_FALSE(f.Select(u"cmbSize", 2));
    EXPECT_FALSE(f.Click(u"lName"));
    EXPECT_FALSE(f.Click(u"nothing"));
    EXPECT_TRUE(log.empty());
}

TEST_F(FormTest, SettingAValueInCode_RunsNoHandler) {
    frmSample& f = form();
    f.Show();
    log.clear();
    f.chkLoud.SetValue(1);
    f.txtName.SetText(u"x");
    f.cmbSize.SetListIndex(0);
    EXPECT_TRUE(log.empty());
}

TEST_F(FormTest, Options_OfOneLevel_ExcludeEachOther) {
    frmSample& f = form();
    f.Show();
    f.Click(u"optA");
    f.Click(u"optB");
    EXPECT_FALSE(f.optA.Value());
    EXPECT_TRUE(f.optB.Value());
}

TEST_F(FormTest, EnterAndEscape_PressTheDefaultAndTheCancelButton) {
    frmSample& f = form();
    f.Show();
    log.clear();
    EXPECT_TRUE(f.PressEnter());
    EXPECT_EQ(log, Log{u"OK"});
    EXPECT_TRUE(f.PressEscape());
    EXPECT_FALSE(f.IsLoaded());
}

TEST_F(FormTest, Enter_OnAFocusedButton_PressesThatOne) {
    frmSample& f = form();
    f.Show();
    f.SetFocus(f.cmdCancel);
    EXPECT_TRUE(f.PressEnter());
    EXPECT_FALSE(f.IsLoaded());
}

TEST_F(FormTest, CloseByUser_TellsTheReason_AndDoesNothingOnAnUnclosableWindow) {
    frmSample& f = form();
    f.Show();
    ui::WindowStyle style;
    style.closable = false;
    f.SetStyle(style);
    log.clear();
    EXPECT_FALSE(f.CloseByUser());
    EXPECT_TRUE(log.empty());
    f.SetStyle({});
    EXPECT_TRUE(f.CloseByUser());
    EXPECT_EQ(log, (Log{u"query user", u"unload"}));
}

TEST_F(FormTest, Timer_RunsWhileEnabledAndLoaded) {
    frmSample& f = form();
    f.tmrBeat.SetEnabled(true);
    world.loop.Advance(1000);
    EXPECT_TRUE(log.empty()) << "an unloaded form has no timers";
    f.Load();
    world.loop.Advance(250);
    EXPECT_EQ(log, (Log{u"load", u"beat", u"beat"}));
    f.tmrBeat.SetEnabled(false);
    world.loop.Advance(1000);
    EXPECT_EQ(log.size(), 3u);
}

TEST_F(FormTest, Timer_StopsWithTheForm_AndIsBackAtItsDesignNextTime) {
    frmSample& f = form();
    f.Load();
    f.tmrBeat.SetEnabled(true);
    f.Unload();
    EXPECT_EQ(world.loop.TimerCount(u"frmSample.tmrBeat"), 0);
    f.Load();
    EXPECT_FALSE(f.tmrBeat.Enabled());
    EXPECT_EQ(world.loop.TimerCount(u"frmSample.tmrBeat"), 0);
}

TEST_F(FormTest, Timer_MayDisableItselfAndUnloadItsFormInItsHandler) {
    frmSample& f = form();
    f.Load();
    f.tmrBeat.onTimer = [&] {
        f.tmrBeat.SetEnabled(false);
        f.Unload();
        f.field = 1;
    };
    f.tmrBeat.SetEnabled(true);
    world.loop.Advance(500);
    EXPECT_EQ(f.field, 1);
    EXPECT_FALSE(f.IsLoaded());
}

TEST_F(FormTest, Timer_HandlerIsNotEnteredAgainFromAPumpOfItsOwn) {
    frmSample& f = form();
    f.Load();
    int depth = 0;
    int deepest = 0;
    f.tmrBeat.onTimer = [&] {
        deepest = std::max(deepest, ++depth);
        world.loop.Sleep(300);
        world.loop.DoEvents();
        --depth;
    };
    f.tmrBeat.SetEnabled(true);
    world.loop.Advance(1000);
    EXPECT_EQ(deepest, 1);
}

TEST_F(FormTest, Timer_EnabledAgain_KeepsItsDueTime_AndANewIntervalStartsOver) {
    frmSample& f = form();
    f.Load();
    f.tmrBeat.SetEnabled(true);
    world.loop.Advance(60);
    f.tmrBeat.SetEnabled(true);
    world.loop.Advance(50);
    EXPECT_EQ(log, (Log{u"load", u"beat"}));
    f.tmrBeat.SetInterval(500);
    world.loop.Advance(499);
    EXPECT_EQ(log.size(), 2u);
    world.loop.Advance(1);
    EXPECT_EQ(log.size(), 3u);
}

TEST_F(FormTest, Forms_WhenDestroyed_TakeTheirFormsOffTheScreenWithoutAsking) {
    {
        ui::Forms other{world.presenter, world.loop};
        const Context c{other, log};
        other.Get<frmSample>(c).refuse = true;
        other.Get<frmSample>(c).Show();
        log.clear();
    }
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(world.presenter.OnScreen().empty());
}

}  // namespace
}  // namespace kestrum
