// The product's own forms on a real display, over the scripted world: what they show and how a user works them.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <filesystem>

#include "Places.h"
#include "addin/frmAbout.h"
#include "qt/ProductForms.h"
#include "real/Desktop.h"
#include "recording/frmMask1.h"
#include "recording/frmNotice.h"
#include "recording/frmRecDot.h"
#include "recording/frmRecStatus.h"
#include "recording/frmTopmost.h"
#include "support/frmMsgBox.h"
#include "support/frmMsgLink.h"
#include "support/frmStatus.h"
#include "support/modMsgBox.h"

namespace kestrum::qt {
namespace {

TEST_F(ProductFormsTest, StartNotice_StandsInTheMiddle_InTheUsersLanguage) {
    auto& notice = Shown(forms.Get<frmTopmost>(recordHere));
    Keep(notice);
    const QRect window = WindowOf(notice).geometry();
    EXPECT_NEAR(window.center().x(), Screen::kWidth / 2, 1);
    EXPECT_NEAR(window.center().y(), Screen::kHeight / 2, 1);
    EXPECT_NE(WidgetWithText<QLabel>(notice, "Starting Slide Show ..."), nullptr);
}

TEST_F(ProductFormsTest, StartNotice_GoesByItselfAfterThreeSeconds) {
    auto& notice = Shown(forms.Get<frmTopmost>(recordHere));
    const std::int32_t shown = loop.TickCount();
    EXPECT_TRUE(PumpUntil([&] { return !notice.IsLoaded(); }));
    EXPECT_GE(loop.TickCount() - shown, 2000);
    EXPECT_EQ(qtPresenter.Find(notice), nullptr);
}

TEST_F(ProductFormsTest, Status_ShowsEachTextCentred) {
    auto& status = forms.Get<frmStatus>(recordHere);
    status.ShowText(u"Please wait, checking the project ...");
    Keep(status);
    const int width = WindowOf(status).width();
    EXPECT_EQ(WindowOf(status).y(), Screen::kHeight / 2 - 100);
    status.ShowText(u"Saving ...");
    Settle();
    EXPECT_LT(WindowOf(status).width(), width);
    EXPECT_NEAR(WindowOf(status).geometry().center().x(), Screen::kWidth / 2, 1);
}

TEST_F(ProductFormsTest, RecordingClock_LiesWhollyOnTheScreen_AtItsCorner) {
    auto& clock = Shown(forms.Get<frmRecStatus>(recordHere));
    Keep(clock);
    const QRect window = WindowOf(clock).geometry();
    EXPECT_EQ(window.right() + 1, Screen::kWidth - 10);
    EXPECT_EQ(window.bottom() + 1, Screen::kHeight - 10);
    for (const auto* label : WindowOf(clock).findChildren<QLabel*>()) {
        EXPECT_TRUE(WindowOf(clock).rect().contains(label->geometry()));
    }
    EXPECT_TRUE(PumpUntil([&] { return WidgetWithText<QLabel>(clock, "REC 00:00:01") != nullptr; }));
}

TEST_F(ProductFormsTest, RecordingLight_IsARedDiscAtTheCorner) {
    auto& light = forms.Get<frmRecDot>(recordHere);
    light.Light();
    Keep(light);
    const QRect window = WindowOf(light).geometry();
    EXPECT_EQ(window, QRect(Screen::kWidth - 40, Screen::kHeight - 40, 30, 30));
    const QColor disc = OnScreen(window.center());
    EXPECT_GT(disc.red(), 200);
    EXPECT_LT(disc.green(), 120);
}

TEST_F(ProductFormsTest, SeeThroughWindows_LetTheShowBeSeen_WithACompositor_AndCoverItWithout) {
    QWidget show(nullptr, Qt::Window | Qt::BypassWindowManagerHint);
    show.setGeometry(0, 0, Screen::kWidth, Screen::kHeight);
    show.setPalette(QPalette(Qt::white));
    show.show();
    auto& mask = forms.Get<frmMask1>(recordHere);
    mask.Cover({0, 0, 100, 600});
    const QColor plate(0x24, 0x2B, 0x35);
    EXPECT_TRUE(PumpUntil([&] { return OnScreen({50, 300}) == plate; }));
    {
        const auto compositor = real::StartCompositor(screen.Display());
        const int blended = (plate.red() * 150 + 255 * 105) / 255;
        EXPECT_TRUE(PumpUntil([&] { return std::abs(OnScreen({50, 300}).red() - blended) <= 3; }));
        EXPECT_TRUE(PumpUntil([&] { return OnScreen({300, 300}) == QColor(Qt::white); }));
    }
    show.update();
    EXPECT_TRUE(PumpUntil([&] { return OnScreen({50, 300}) == plate; }));
}

TEST_F(ProductFormsTest, DeviceNotice_StandsWholeNearTheUpperEdge_AndTakesTheKeyboardFromNobody) {
    auto& notice = forms.Get<frmNotice>(recordHere);
    notice.ShowNotice({false, false, u"Built-in Audio Analog Stereo of the lecture hall's desk"});
    Keep(notice);
    const QRect window = WindowOf(notice).geometry();
    EXPECT_EQ(window.top(), 24);
    const auto* text = WindowOf(notice).findChild<QLabel*>();
    EXPECT_GE(text->height(), text->heightForWidth(text->width())) << "two lines, and none of them cut";
    EXPECT_NEAR(window.center().x(), Screen::kWidth / 2, 1);
    EXPECT_GE(window.left(), 0);
    EXPECT_FALSE(WindowOf(notice).isActiveWindow());
    notice.ShowNotice({false, true, u"Desk"});
    Settle();
    EXPECT_LT(WindowOf(notice).width(), window.width()) << "it fits its new text";
    EXPECT_NE(WidgetWithText<QLabel>(notice, "\"Desk\" is back and is being recorded."), nullptr);
}

TEST_F(ProductFormsTest, Mask_CoversExactlyWhatItIsGiven) {
    auto& mask = forms.Get<frmMask1>(recordHere);
    mask.Cover({0, 0, 17, 600});
    mask.Refresh();
    Settle();
    EXPECT_EQ(WindowOf(mask).geometry(), QRect(0, 0, 17, 600));
}

TEST_F(ProductFormsTest, OurMessageBox_AnswersToTheKeyboard) {
    const auto answer = [this](Qt::Key key, bool tick) {
        const auto user = loop.StartTimer(u"user", 20, host::TimerReentry::Skipped, [&, done = false]() mutable {
            auto& form = forms.Get<frmMsgBox>(recordHere);
            if (done || !qtPresenter.Find(form) || !WindowOf(form).isActiveWindow()) return;
            done = true;
            if (tick) form.Click(u"chkPrompt");
            Settle();
            Keep(form);
            QTest::keyClick(&WindowOf(form), key);
        });
        bool checked = false;
        modMsgBox::MsgBoxRequest request;
        request.text = u"The recording has no sound.\\nDo you want to go on? 没有声音，继续吗？";
        request.buttons = modMsgBox::kButtonsYesNo;
        request.showCheck = true;
        request.topmost = true;
        request.checkCaption = u"Don't ask again";
        const auto result = modMsgBox::ShowMsgBox(recordHere, request, checked);
        return std::pair(result, checked);
    };
    EXPECT_EQ(answer(Qt::Key_Return, true), std::pair(modMsgBox::kYes, true));
    EXPECT_EQ(answer(Qt::Key_Escape, false), std::pair(modMsgBox::kNo, false));
}

TEST_F(ProductFormsTest, OurMessageBox_IsAsWideAsAsked_AndHasNoCloseButton) {
    const auto user = loop.StartTimer(u"user", 20, host::TimerReentry::Skipped, [&] {
        auto& form = forms.Get<frmMsgBox>(recordHere);
        if (!qtPresenter.Find(form) || !WindowOf(form).isActiveWindow()) return;
        EXPECT_EQ(WindowOf(form).width(), 400);
        EXPECT_GE(WindowOf(form).height(), 120);
        WindowOf(form).close();
        Settle();
        EXPECT_TRUE(form.IsLoaded());
        form.Click(u"cmdOK");
    });
    bool checked = false;
    modMsgBox::MsgBoxRequest request;
    request.text = u"Short.";
    EXPECT_EQ(modMsgBox::ShowMsgBox(recordHere, request, checked), modMsgBox::kOk);
}

TEST_F(ProductFormsTest, OurMessageBox_ScrollsATextThatIsTallerThanTheScreen) {
    const auto user = loop.StartTimer(u"user", 20, host::TimerReentry::Skipped, [&, done = false]() mutable {
        auto& form = forms.Get<frmMsgBox>(recordHere);
        if (done || !qtPresenter.Find(form) || !WindowOf(form).isActiveWindow()) return;
        done = true;
        Settle();
        Keep(form, "-long");
        EXPECT_TRUE(DisplayRect().contains(WindowOf(form).frameGeometry()));
        auto* text = WindowOf(form).findChild<QPlainTextEdit*>();
        ASSERT_NE(text, nullptr);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
        EXPECT_GT(text->verticalScrollBar()->value(), 0);
        QTest::keyClick(&WindowOf(form), Qt::Key_Escape);
    });
    bool checked = false;
    modMsgBox::MsgBoxRequest request;
    for (int i = 0; i < 200; ++i) request.text += u"The file of slide " + ToText(i) + u" cannot be read.\\n";
    request.buttons = modMsgBox::kButtonsOkCancel;
    request.showCheck = true;
    EXPECT_EQ(modMsgBox::ShowMsgBox(recordHere, request, checked), modMsgBox::kCancel);
}

TEST_F(ProductFormsTest, OurMessageBox_ReadsFromTheRight_WhereItsTextDoes) {
    const auto user = loop.StartTimer(u"user", 20, host::TimerReentry::Skipped, [&, done = false]() mutable {
        auto& form = forms.Get<frmMsgBox>(recordHere);
        if (done || !qtPresenter.Find(form) || !WindowOf(form).isActiveWindow()) return;
        done = true;
        Settle();
        Keep(form, "-rtl");
        EXPECT_EQ(WidgetWithText<QLabel>(form, QString::fromUtf8("אין מיקרופון.\nלהמשיך?"))->layoutDirection(),
                  Qt::RightToLeft);
        QTest::keyClick(&WindowOf(form), Qt::Key_Return);
    });
    bool checked = false;
    modMsgBox::MsgBoxRequest request;
    request.text = u"אין מיקרופון.\\nלהמשיך?";
    request.buttons = modMsgBox::kButtonsOkCancel;
    EXPECT_EQ(modMsgBox::ShowMsgBox(recordHere, request, checked), modMsgBox::kOk);
}

TEST_F(ProductFormsTest, LinkMessage_OpensItsLinkFromTheKeyboard) {
    const auto user = loop.StartTimer(u"user", 20, host::TimerReentry::Skipped, [&, done = false]() mutable {
        auto& form = forms.Get<frmMsgLink>(recordHere);
        if (done || !qtPresenter.Find(form) || !WindowOf(form).isActiveWindow()) return;
        done = true;
        Keep(form);
        EXPECT_EQ(form.Focus(), &form.lLink);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        Settle();
        QTest::keyClick(&WindowOf(form), Qt::Key_Escape);
    });
    modMsgBox::ShowMsgLink(recordHere, u"The lecture is on the server:", u"http://localhost/lecture/7", u"", 0, 0);
    EXPECT_EQ(world.processes.opened, (std::vector<String>{u"http://localhost/lecture/7"}));
}

TEST_F(ProductFormsTest, About_TellsVersionAndPlaces_AndGoesByEnterAndEscape) {
    world.fs.Put(InInstall(u"default.ksp"), test::InstallFile("default.ksp"));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        auto& about = forms.Get<frmAbout>(projectHere);
        about.Show();
        ASSERT_TRUE(PumpUntil([&] { return WindowOf(about).isActiveWindow(); }));
        Settle();
        Keep(about);
        EXPECT_TRUE(about.lVersion.Caption().ends_with(u"8.0"));
        EXPECT_TRUE(about.lPlaces.Caption().ends_with(u"The program lies in /opt/kestrum."));
        EXPECT_TRUE(DisplayRect().contains(WindowOf(about).frameGeometry()));
        QTest::keyClick(&WindowOf(about), key);
        EXPECT_TRUE(PumpUntil([&] { return !about.IsLoaded(); }));
    }
}

TEST_F(ProductFormsTest, Mp4Dialog_IsWorkedByTheKeyboardAlone) {
    auto& dialog = forms.Get<frmExportMp4>(publishHere);
    dialog.Show();
    ASSERT_TRUE(PumpUntil([&] { return WindowOf(dialog).isActiveWindow(); }));
    Settle();
    Keep(dialog);
    ASSERT_EQ(dialog.Focus(), &dialog.cmbResolution);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    Settle();
    EXPECT_TRUE(dialog.txtWidth.Visible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    Settle();
    ASSERT_EQ(dialog.Focus(), &dialog.txtWidth);
    auto* width = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(width, nullptr);
    width->selectAll();
    QTest::keyClicks(width, "800");
    Settle();
    EXPECT_EQ(dialog.txtWidth.Text(), u"800");
    EXPECT_TRUE(dialog.lTip.Visible());
    QTest::keyClick(width, Qt::Key_Tab);
    Settle();
    EXPECT_FALSE(dialog.lTip.Visible()) << "leaving the box accepts the value";
    const QString name =
        QString::fromStdString(std::string(places::kInstall) + "/../screenshots/frmExportMp4-custom.png");
    WindowOf(dialog).grab().save(name);
    EXPECT_TRUE(DisplayRect().contains(WindowOf(dialog).geometry()));
    QTest::keyClick(&WindowOf(dialog), Qt::Key_Escape);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
}

}  // namespace
}  // namespace kestrum::qt
