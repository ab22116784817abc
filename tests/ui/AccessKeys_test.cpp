#include "ui/AccessKeys.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "ui/Forms.h"

namespace kestrum::ui {
namespace {

struct Desk {
    Forms& forms;
};

class frmKeys : public Form {
  public:
    explicit frmKeys(const Desk& desk) : Form(desk.forms, u"frmKeys") {
        lName.SetCaption(u"Name:");
        chkAll.SetCaption(u"Save all & more");
        chkNone.SetCaption(u"...");
        chkWide.SetCaption(u"保存");
        cmdSave.SetCaption(u"Save");
        cmdTest.SetCaption(u"Test");
        cmdStop.SetCaption(u"Stop");
        SetLayout(Column({Field(lName, txtName), chkAll, chkNone, chkWide, cmdSave, Overlay({cmdTest, cmdStop})}));
    }
    Label lName{*this, u"lName"};
    TextBox txtName{*this, u"txtName"};
    CheckBox chkAll{*this, u"chkAll"};
    CheckBox chkNone{*this, u"chkNone"};
    CheckBox chkWide{*this, u"chkWide"};
    CommandButton cmdSave{*this, u"cmdSave"};
    CommandButton cmdTest{*this, u"cmdTest"};
    CommandButton cmdStop{*this, u"cmdStop"};
};

class AccessKeysTest : public testing::Test {
  protected:
    /// Place of the letter in the caption that leads to `target`, -1 without one.
    int PlaceOf(const Control& target) {
        for (const AccessKey& key : AccessKeysOf(form)) {
            if (key.target == &target) return static_cast<int>(key.at);
        }
        return -1;
    }
    sim::World world;
    Forms forms{world.presenter, world.loop};
    frmKeys& form = forms.Get<frmKeys>(Desk{forms});
};

TEST_F(AccessKeysTest, Buttons_ChooseFirst_OthersTakeTheStartOfANextWord) {
    EXPECT_EQ(PlaceOf(form.cmdSave), 0);
    EXPECT_EQ(PlaceOf(form.chkAll), 5) << "S is taken, the a of \"all\" begins a word";
}

TEST_F(AccessKeysTest, AFieldHasItsLetterInItsLabel) {
    EXPECT_EQ(PlaceOf(form.txtName), 0);
    EXPECT_EQ(AccessKeysOf(form).at(3).caption, &form.lName) << "behind the buttons";
}

TEST_F(AccessKeysTest, WithoutLetters_ThereIsNoKey) {
    EXPECT_EQ(PlaceOf(form.chkNone), -1);
    EXPECT_EQ(PlaceOf(form.chkWide), -1);
}

TEST_F(AccessKeysTest, TakenLetters_LeaveOneInsideAWord_OrMakeWay_OrThereIsNone) {
    form.chkNone.SetCaption(u"nn");
    EXPECT_EQ(PlaceOf(form.txtName), 2) << "Name has other letters";
    EXPECT_EQ(PlaceOf(form.chkNone), 0);
    form.cmdSave.SetCaption(u"x");
    form.chkNone.SetCaption(u"xx");
    EXPECT_EQ(PlaceOf(form.chkNone), -1);
    form.chkNone.SetCaption(u"XNz");
    EXPECT_EQ(PlaceOf(form.chkNone), 2);
}

TEST_F(AccessKeysTest, ControlsThatTakeTurns_ShareTheirLetter) {
    EXPECT_EQ(PlaceOf(form.cmdTest), 0);
    EXPECT_EQ(PlaceOf(form.cmdStop), 1);
}

}  // namespace
}  // namespace kestrum::ui
