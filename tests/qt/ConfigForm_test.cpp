// The dialog of preferences on a real display: everything is on it, named, in reach of the keyboard, and on the screen.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QTest>
#include <set>

#include "devices/frmConfig.h"
#include "qt/ProductForms.h"
#include "ui/AccessKeys.h"

namespace kestrum::qt {
namespace {

class ConfigFormTest : public ProductFormsTest {
  protected:
    frmConfig& ShowDialog() {
        support.g_OsVersion = 63;
        auto& dialog = forms.Get<frmConfig>(devices::Context{projectHere, devices});
        dialog.Show();
        EXPECT_TRUE(PumpUntil([&] { return WindowOf(dialog).isActiveWindow(); }));
        Settle();
        return dialog;
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        Settle();
    }
    String Saved(const String& key) const { return world.settings.Get(u"configure", key); }
};

TEST_F(ConfigFormTest, FitsASmallScreen_AndNoTextIsCut) {
    auto& dialog = ShowDialog();
    Keep(dialog);
    EXPECT_LE(WindowOf(dialog).frameGeometry().width(), 800);
    EXPECT_LE(WindowOf(dialog).frameGeometry().height(), 560) << "600 less a title and a bar of the desktop";
    for (const auto* widget : WindowOf(dialog).findChildren<QWidget*>()) {
        if (!widget->isVisible() || !widget->layout()) continue;
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width());
    }
    for (const auto* label : WindowOf(dialog).findChildren<QLabel*>()) {
        if (!label->isVisible() || label->text().isEmpty()) continue;
        EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
    }
}

TEST_F(ConfigFormTest, TabKey_VisitsEveryChoiceOnce_InReadingOrder) {
    auto& dialog = ShowDialog();
    std::vector<ui::Control*> usable;
    for (ui::Control* control : dialog.TabOrder()) {
        if (control->IsUsable()) usable.push_back(control);
    }
    ASSERT_GE(usable.size(), 18U);
    std::vector<ui::Control*> visited = {dialog.Focus()};
    for (std::size_t i = 1; i < usable.size(); ++i) {
        Press(Qt::Key_Tab);
        visited.push_back(dialog.Focus());
    }
    EXPECT_EQ(visited, usable);
    Press(Qt::Key_Tab);
    EXPECT_EQ(dialog.Focus(), usable.front()) << "the way is a circle";
}

TEST_F(ConfigFormTest, EveryChoice_HasANameAndALetterOfItsOwn) {
    auto& dialog = ShowDialog();
    std::set<char16_t> letters;
    std::set<const ui::Control*> reached;
    for (const ui::AccessKey& key : ui::AccessKeysOf(dialog)) {
        if (key.target == &dialog.cmdStopRecord || key.target == &dialog.cmdStop) continue;  // not there at first
        EXPECT_TRUE(letters.insert(static_cast<char16_t>(std::tolower(key.caption->Caption()[key.at]))).second);
        reached.insert(key.target);
    }
    for (const ui::Control* control : dialog.TabOrder()) {
        if (!control->IsUsable()) continue;
        EXPECT_FALSE(dialog.AccessibleNameOf(*control).empty()) << host::ToUtf8(control->Name());
        if (control == dialog.DefaultButton() || control == dialog.CancelButton()) continue;
        EXPECT_TRUE(reached.count(control)) << host::ToUtf8(control->Name()) << " has no letter";
    }
}

TEST_F(ConfigFormTest, AltAndTheLetter_TakesTheKeyboardToAList) {
    auto& dialog = ShowDialog();
    for (const ui::AccessKey& key : ui::AccessKeysOf(dialog)) {
        if (key.target != &dialog.cmbFrameRate) continue;
        const char letter = static_cast<char>(key.caption->Caption()[key.at]);
        QTest::keyClick(QApplication::focusWidget(), letter, Qt::AltModifier);
    }
    Settle();
    ASSERT_EQ(dialog.Focus(), &dialog.cmbFrameRate);
    Press(Qt::Key_Up);
    EXPECT_EQ(dialog.cmbFrameRate.ListIndex(), 1);
}

TEST_F(ConfigFormTest, SpaceAndEnter_ChangeAndSave) {
    auto& dialog = ShowDialog();
    ASSERT_EQ(dialog.Focus(), &dialog.chkAutoRecord);
    Press(Qt::Key_Space);
    EXPECT_TRUE(dialog.chkAutoRecord.Checked());
    Press(Qt::Key_Return);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
    EXPECT_EQ(Saved(u"chkAutoRecord"), u"1");
    EXPECT_EQ(Saved(u"frameRateLevel"), u"medium");
}

TEST_F(ConfigFormTest, Escape_LeavesEverythingAsItWas) {
    auto& dialog = ShowDialog();
    Press(Qt::Key_Space);
    Press(Qt::Key_Escape);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
    EXPECT_EQ(Saved(u"chkAutoRecord"), u"");
}

TEST_F(ConfigFormTest, WithoutALecture_ItsPhotoIsNotOffered) {
    support.workFolder.clear();
    auto& dialog = ShowDialog();
    Keep(dialog, "-preferences");
    EXPECT_FALSE(dialog.cmdPhoto.IsShown());
}

}  // namespace
}  // namespace kestrum::qt
