#include "adapters/qt/QtMessageBox.h"
#include "Places.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <filesystem>

#include "qt/Screen.h"

namespace kestrum::qt {
namespace {

using host::BoxAnswer;
using host::BoxButtons;

class QtMessageBoxTest : public testing::Test {
  protected:
    /// Shows a box, lets `act` loose on it once it is active, and gives the answer.
    BoxAnswer Ask(BoxButtons buttons, std::function<void(QMessageBox&)> act, const String& text = u"Question?") {
        bool acted = false;
        const auto user = loop.StartTimer(u"user", 10, host::TimerReentry::Skipped, [&] {
            auto* up = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (acted || !up || !up->isActiveWindow()) return;
            acted = true;
            act(*up);
        });
        return box.Show(text, buttons, title);
    }
    static std::function<void(QMessageBox&)> Press(QMessageBox::StandardButton button) {
        return [button](QMessageBox& up) { up.button(button)->click(); };
    }

    Screen& screen = Screen::Get();
    platform::RecordingTrace trace;
    QtEventLoop loop{trace};
    QtMessageBox box{loop, u"Kestrum for PowerPoint"};
    String title;
};

TEST_F(QtMessageBoxTest, EachButton_IsItsAnswer) {
    EXPECT_EQ(Ask(BoxButtons::Ok, Press(QMessageBox::Ok)), BoxAnswer::Ok);
    EXPECT_EQ(Ask(BoxButtons::OkCancel, Press(QMessageBox::Cancel)), BoxAnswer::Cancel);
    EXPECT_EQ(Ask(BoxButtons::YesNo, Press(QMessageBox::Yes)), BoxAnswer::Yes);
    EXPECT_EQ(Ask(BoxButtons::YesNo, Press(QMessageBox::No)), BoxAnswer::No);
    EXPECT_EQ(Ask(BoxButtons::YesNoCancel, Press(QMessageBox::Cancel)), BoxAnswer::Cancel);
    EXPECT_EQ(Ask(BoxButtons::RetryCancel, Press(QMessageBox::Retry)), BoxAnswer::Retry);
}

TEST_F(QtMessageBoxTest, EnterAndEscape_AnswerAsTheButtonsSay) {
    const auto key = [](Qt::Key which) { return [which](QMessageBox& up) { QTest::keyClick(&up, which); }; };
    EXPECT_EQ(Ask(BoxButtons::Ok, key(Qt::Key_Escape)), BoxAnswer::Ok);
    EXPECT_EQ(Ask(BoxButtons::OkCancel, key(Qt::Key_Escape)), BoxAnswer::Cancel);
    EXPECT_EQ(Ask(BoxButtons::OkCancel, key(Qt::Key_Return)), BoxAnswer::Ok);
    EXPECT_EQ(Ask(BoxButtons::RetryCancel, [](QMessageBox& up) { up.close(); }), BoxAnswer::Cancel);
}

TEST_F(QtMessageBoxTest, YesOrNo_CannotBeEscaped) {
    EXPECT_EQ(Ask(BoxButtons::YesNo,
                  [](QMessageBox& up) {
                      QTest::keyClick(&up, Qt::Key_Escape);
                      up.close();
                      EXPECT_TRUE(up.isVisible());
                      up.button(QMessageBox::Yes)->click();
                  }),
              BoxAnswer::Yes);
}

TEST_F(QtMessageBoxTest, Leaving_ChangesLeast_WhateverTheQuestion) {
    const auto leave = [this](QMessageBox&) { box.Leave(); };
    EXPECT_EQ(Ask(BoxButtons::Ok, leave), BoxAnswer::Ok);
    EXPECT_EQ(Ask(BoxButtons::OkCancel, leave), BoxAnswer::Cancel);
    EXPECT_EQ(Ask(BoxButtons::YesNo, leave), BoxAnswer::No);
    EXPECT_EQ(Ask(BoxButtons::YesNoCancel, leave), BoxAnswer::Cancel);
    EXPECT_EQ(Ask(BoxButtons::RetryCancel, leave), BoxAnswer::Cancel);
}

TEST_F(QtMessageBoxTest, Leaving_AnswersABoxAboveAnotherToo) {
    BoxAnswer inner = BoxAnswer::Ok;
    const auto outer = Ask(BoxButtons::OkCancel, [&](QMessageBox&) {
        const auto later = loop.StartTimer(u"leave", 20, host::TimerReentry::Skipped, [this] { box.Leave(); });
        inner = box.Show(u"Above?", BoxButtons::YesNo, u"");
    });
    EXPECT_EQ(inner, BoxAnswer::No);
    EXPECT_EQ(outer, BoxAnswer::Cancel);
}

TEST_F(QtMessageBoxTest, EmptyTitle_IsTheApplications) {
    Ask(BoxButtons::Ok, [](QMessageBox& up) {
        EXPECT_EQ(up.windowTitle(), "Kestrum for PowerPoint");
        up.button(QMessageBox::Ok)->click();
    });
    title = u"Record";
    Ask(BoxButtons::Ok, [](QMessageBox& up) {
        EXPECT_EQ(up.windowTitle(), "Record");
        up.button(QMessageBox::Ok)->click();
    });
}

TEST_F(QtMessageBoxTest, Timers_RunWhileItIsUp_AndTheTextIsPlain) {
    int ticks = 0;
    const auto timer = loop.StartTimer(u"t", 5, host::TimerReentry::Skipped, [&] { ++ticks; });
    Ask(
        BoxButtons::YesNo,
        [&](QMessageBox& up) {
            const std::string folder = std::string(places::kInstall) + "/../screenshots";
            std::filesystem::create_directories(folder);
            up.grab().save(QString::fromStdString(folder + "/message-box.png"));
            EXPECT_EQ(up.textFormat(), Qt::PlainText);
            EXPECT_EQ(up.text(), QString::fromUtf16(u"<b>讲座</b> & more\nsecond line"));
            up.button(QMessageBox::No)->click();
        },
        u"<b>讲座</b> & more\r\nsecond line");
    EXPECT_GT(ticks, 0);
}

TEST_F(QtMessageBoxTest, AVeryLongText_IsScrolled_AndTheButtonsStayOnTheScreen) {
    String text;
    for (int i = 0; i < 300; ++i) text += u"One more thing that went wrong.\r\n";
    const auto look = [](QMessageBox& up) {
        EXPECT_TRUE(QRect(0, 0, Screen::kWidth, Screen::kHeight).contains(up.geometry()));
        auto* scrolled = up.findChild<QPlainTextEdit*>();
        ASSERT_NE(scrolled, nullptr);
        EXPECT_TRUE(scrolled->isVisible());
        EXPECT_EQ(scrolled->toPlainText().count(u'\n'), 300);
        QTest::keyClick(&up, Qt::Key_Return);
    };
    EXPECT_EQ(Ask(BoxButtons::OkCancel, look, text), BoxAnswer::Ok);
}

}  // namespace
}  // namespace kestrum::qt
