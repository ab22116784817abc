// Values of single controls.
#include "ui/Controls.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "ui/Forms.h"

namespace kestrum {
namespace {

struct Context {
    ui::Forms& forms;
};

class frmControls : public ui::Form {
  public:
    explicit frmControls(const Context& c) : Form(c.forms, u"frmControls") {}
    ui::ComboBox cmbList{*this, u"cmbList"};
    ui::ProgressBar ProgressBar1{*this, u"ProgressBar1"};
    ui::LevelMeter InputLevel{*this, u"InputLevel"};
    ui::CheckBox Check1_0{*this, u"Check1", 0};
    ui::CheckBox Check1_1{*this, u"Check1", 1};
    ui::TextBox txtShort{*this, u"txtShort"};
    ui::Toolbar Toolbar1{*this, u"Toolbar1"};
    ui::Link lLink{*this, u"lLink"};
};

class ControlsTest : public ::testing::Test {
  protected:
    sim::World world;
    ui::Forms forms{world.presenter, world.loop};
    Context context{forms};
    frmControls& form = forms.Get<frmControls>(context);
};

TEST_F(ControlsTest, ComboBox_SelectsByIndexAndByText) {
    form.cmbList.AddItem(u"32");
    form.cmbList.AddItem(u"64");
    EXPECT_EQ(form.cmbList.ListIndex(), -1);
    EXPECT_EQ(form.cmbList.Text(), u"");
    EXPECT_TRUE(form.cmbList.SelectText(u"64"));
    EXPECT_EQ(form.cmbList.ListIndex(), 1);
    EXPECT_FALSE(form.cmbList.SelectText(u"96"));
    EXPECT_EQ(form.cmbList.Text(), u"64");
    EXPECT_THROW(form.cmbList.SetListIndex(2), host::Error);
    form.cmbList.Clear();
    EXPECT_EQ(form.cmbList.Text(), u"");
}

TEST_F(ControlsTest, Range_KeepsItsValueBetweenItsBounds) {
    form.ProgressBar1.SetValue(150);
    EXPECT_EQ(form.ProgressBar1.Value(), 100);
    form.ProgressBar1.SetRange(0, 50);
    EXPECT_EQ(form.ProgressBar1.Value(), 50);
    form.ProgressBar1.SetValue(-1);
    EXPECT_EQ(form.ProgressBar1.Value(), 0);
}

TEST_F(ControlsTest, LevelMeter_LightsItsShareOfTheBars) {
    ASSERT_EQ(form.InputLevel.Bars(), 20);
    const auto lit = [&](std::int32_t level) {
        form.InputLevel.SetLevel(level);
        return form.InputLevel.Lit();
    };
    EXPECT_EQ(lit(0), 0);
    EXPECT_EQ(lit(50), 10);
    EXPECT_EQ(lit(100), 20);
    EXPECT_EQ(lit(130), 20);
    EXPECT_EQ(lit(-4), 0);
    EXPECT_EQ(lit(12), 2) << "2.4 bars";
    EXPECT_EQ(lit(13), 3) << "2.6 bars";
}

TEST_F(ControlsTest, ControlArray_IsFoundByNameAndIndex) {
    EXPECT_EQ(form.FindControl(u"Check1(1)"), &form.Check1_1);
    EXPECT_EQ(form.FindControl(u"check1"), &form.Check1_0);
    EXPECT_EQ(form.Check1_1.FullName(), u"Check1(1)");
    EXPECT_EQ(form.Check1_1.Name(), u"Check1");
}

TEST_F(ControlsTest, TextBox_CutsWhatIsTypedAtItsLimit) {
    form.Show();
    form.txtShort.SetMaxLength(3);
    EXPECT_TRUE(form.Type(u"txtShort", u"abcdef"));
    EXPECT_EQ(form.txtShort.Text(), u"abc");
}

TEST_F(ControlsTest, Toolbar_ButtonsAreNumberedFromOne) {
    form.Toolbar1.AddButton(u"Play", u"Play it");
    std::int32_t clicked = 0;
    form.Toolbar1.onButtonClick = [&](std::int32_t number) { clicked = number; };
    form.Show();
    EXPECT_TRUE(form.ClickToolbar(form.Toolbar1, 1));
    EXPECT_EQ(clicked, 1);
    EXPECT_FALSE(form.ClickToolbar(form.Toolbar1, 2));
    EXPECT_THROW(form.Toolbar1.SetButtonCaption(0, u"x"), host::Error);
}

TEST_F(ControlsTest, Link_ThatHasTheKeyboard_IsFollowedByEnter) {
    int followed = 0;
    form.lLink.onClick = [&] { ++followed; };
    form.Show();
    EXPECT_TRUE(form.MoveFocus(form.lLink));
    EXPECT_TRUE(form.PressEnter());
    EXPECT_EQ(followed, 1);
}

TEST_F(ControlsTest, PointerOverAControl_RunsItsMoveHandler_OnlyWhileItShows) {
    form.lLink.onMouseMove = [&] { form.lLink.SetHot(true); };
    form.PointAt(&form.lLink);
    EXPECT_FALSE(form.lLink.Hot());
    form.Show();
    form.lLink.SetVisible(false);
    form.PointAt(&form.lLink);
    EXPECT_FALSE(form.lLink.Hot());
    form.lLink.SetVisible(true);
    form.PointAt(&form.lLink);
    EXPECT_TRUE(form.lLink.Hot());
}

}  // namespace
}  // namespace kestrum
