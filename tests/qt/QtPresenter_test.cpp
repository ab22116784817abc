#include "adapters/qt/QtPresenter.h"
#include "Places.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSlider>
#include <QTest>
#include <filesystem>

#include "adapters/qt/QtText.h"
#include "qt/DemoForms.h"
#include "qt/Screen.h"
#include "real/TestWindow.h"

namespace kestrum::qt {
namespace {

class QtPresenterTest : public testing::Test {
  protected:
    ~QtPresenterTest() override { EXPECT_TRUE(trace.lines.empty()); }

    bool PumpUntil(const std::function<bool()>& done) { return Screen::PumpUntil(loop, done); }
    void Settle() {
        for (int i = 0; i < 5; ++i) loop.DoEvents();
    }
    FormWindow& WindowOf(const ui::Form& form) { return *presenter.Find(form); }

    template <class WidgetType>
    WidgetType& WidgetNamed(const ui::Form& form, const QString& accessibleName) {
        for (auto* widget : WindowOf(form).findChildren<WidgetType*>()) {
            if (widget->accessibleName() == accessibleName) return *widget;
        }
        throw std::runtime_error("no widget " + accessibleName.toStdString());
    }

    DemoDialog& ShowDialog() {
        auto& dialog = forms.Get<DemoDialog>(context);
        dialog.Show();
        EXPECT_TRUE(PumpUntil([&] { return WindowOf(dialog).isActiveWindow(); }));
        Settle();
        return dialog;
    }

    /// The colour on the screen, whoever painted it.
    QColor ScreenColour(int x, int y) {
        return QGuiApplication::primaryScreen()->grabWindow(0, x, y, 1, 1).toImage().pixelColor(0, 0);
    }

    void Keep(const QWidget& widget, const std::string& name) {
        const std::string folder = std::string(places::kInstall) + "/../screenshots";
        std::filesystem::create_directories(folder);
        EXPECT_TRUE(const_cast<QWidget&>(widget).grab().save(QString::fromStdString(folder + "/" + name)));
    }

    Screen& screen = Screen::Get();
    platform::RecordingTrace trace;
    QtEventLoop loop{trace};
    QtPresenter presenter{loop};
    ui::Forms forms{presenter, loop};
    DemoContext context{forms};
};

TEST_F(QtPresenterTest, Dialog_ShowsItsValues_InAWindowThatFitsThem) {
    auto& dialog = ShowDialog();
    FormWindow& window = WindowOf(dialog);
    Keep(window, "demo-dialog.png");
    EXPECT_EQ(window.windowTitle(), ToQt(dialog.Caption()));
    EXPECT_EQ(WidgetNamed<QLineEdit>(dialog, "Bitrate:").text(), "1200");
    EXPECT_EQ(WidgetNamed<QComboBox>(dialog, "Quality:").currentText(), "Default");
    EXPECT_TRUE(window.rect().contains(window.childrenRect()));
    EXPECT_LE(window.width(), 640);
    const QPoint centre = window.frameGeometry().center();
    EXPECT_NEAR(centre.x(), Screen::kWidth / 2, 2);
    EXPECT_NEAR(centre.y(), Screen::kHeight / 2, 2);
}

TEST_F(QtPresenterTest, Captions_ShowAmpersandsAsTheyAre) {
    auto& dialog = ShowDialog();
    EXPECT_EQ(WidgetNamed<QAbstractButton>(dialog, "Keep the ratio & size").text(), "&Keep the ratio && size");
}

TEST_F(QtPresenterTest, Changes_ReachTheScreen) {
    auto& dialog = ShowDialog();
    dialog.progress.SetValue(90);
    dialog.cmdPublish.SetEnabled(false);
    dialog.lUnit.SetVisible(false);
    dialog.SetCaption(u"Done");
    Settle();
    FormWindow& window = WindowOf(dialog);
    EXPECT_EQ(window.windowTitle(), "Done");
    EXPECT_FALSE(WidgetNamed<QAbstractButton>(dialog, "Publish").isEnabled());
    EXPECT_FALSE(WidgetNamed<QLabel>(dialog, "kbps").isVisible());
}

TEST_F(QtPresenterTest, TabKey_FollowsTheLayout_AndTellsTheBoxThatIsLeft) {
    auto& dialog = ShowDialog();
    EXPECT_EQ(dialog.Focus(), &dialog.txtTitle);
    std::vector<const ui::Control*> visited;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        Settle();
        visited.push_back(dialog.Focus());
    }
    EXPECT_EQ(visited,
              (std::vector<const ui::Control*>{&dialog.cmbQuality, &dialog.txtBitrate, &dialog.chkKeep, &dialog.optA}));
    EXPECT_EQ(dialog.log, u"left ");
}

TEST_F(QtPresenterTest, Typing_ReachesTheModel_UnicodeToo) {
    auto& dialog = ShowDialog();
    QTest::keyClicks(QApplication::focusWidget(), "Lecture 7");
    Settle();
    EXPECT_EQ(dialog.txtTitle.Text(), u"Lecture 7");
    WidgetNamed<QLineEdit>(dialog, "Title:").insert(QString::fromUtf16(u" 讲座"));
    emit WidgetNamed<QLineEdit>(dialog, "Title:").textEdited(WidgetNamed<QLineEdit>(dialog, "Title:").text());
    Settle();
    EXPECT_EQ(dialog.txtTitle.Text(), u"Lecture 7 讲座");
    QTest::keyClicks(&WidgetNamed<QPlainTextEdit>(dialog, "Notes:"), "a\rb");
    Settle();
    EXPECT_EQ(dialog.txtNotes.Text(), u"a\r\nb");
}

TEST_F(QtPresenterTest, BoxThatIsLeftEmpty_ShowsWhatItsHandlerPutsIn) {
    auto& dialog = ShowDialog();
    auto& box = WidgetNamed<QLineEdit>(dialog, "Bitrate:");
    box.setFocus();
    box.selectAll();
    QTest::keyClick(&box, Qt::Key_Delete);
    QTest::keyClick(&box, Qt::Key_Tab);
    Settle();
    EXPECT_EQ(box.text(), "300");
}

TEST_F(QtPresenterTest, Enter_PressesTheDefaultButton_UnlessTheBoxTakesIt) {
    auto& dialog = ShowDialog();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(dialog.log, u"entered ");
    WidgetNamed<QLineEdit>(dialog, "Bitrate:").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Settle();
    EXPECT_EQ(dialog.log, u"entered left publish ");
}

TEST_F(QtPresenterTest, Escape_PressesTheCancelButton_WhoseHandlerMayUnloadTheForm) {
    auto& dialog = ShowDialog();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
    EXPECT_EQ(presenter.Find(dialog), nullptr);
    EXPECT_EQ(dialog.log, u"exit ");
}

TEST_F(QtPresenterTest, Mouse_OperatesEveryKindOfControl) {
    auto& dialog = ShowDialog();
    QTest::mouseClick(&WidgetNamed<QAbstractButton>(dialog, "Keep the ratio & size"), Qt::LeftButton, {}, {8, 8});
    QTest::mouseClick(&WidgetNamed<QAbstractButton>(dialog, "bottom-right"), Qt::LeftButton, {}, {8, 8});
    Settle();
    EXPECT_TRUE(dialog.chkKeep.Checked());
    EXPECT_TRUE(dialog.optB.Value());
    EXPECT_FALSE(dialog.optA.Value());
    EXPECT_FALSE(WidgetNamed<QAbstractButton>(dialog, "top-right").isChecked());
    WidgetNamed<QSlider>(dialog, "Volume:").setValue(30);
    QTest::keyClick(&WidgetNamed<QComboBox>(dialog, "Quality:"), Qt::Key_Down);
    QTest::mouseClick(&WidgetNamed<QAbstractButton>(dialog, "Publish"), Qt::LeftButton);
    Settle();
    EXPECT_EQ(dialog.slider.Value(), 30);
    EXPECT_EQ(dialog.cmbQuality.ListIndex(), 1);
    EXPECT_EQ(dialog.log, u"keep slid quality publish ");
}

TEST_F(QtPresenterTest, DisabledFrame_TakesItsControlsAlong) {
    auto& dialog = ShowDialog();
    dialog.Frame1.SetEnabled(false);
    Settle();
    auto& box = WidgetNamed<QAbstractButton>(dialog, "Keep the ratio & size");
    EXPECT_FALSE(box.isEnabled());
    QTest::mouseClick(&box, Qt::LeftButton, {}, {8, 8});
    Settle();
    EXPECT_FALSE(dialog.chkKeep.Checked());
}

TEST_F(QtPresenterTest, CloseButton_AsksTheForm) {
    auto& dialog = ShowDialog();
    dialog.refuses = true;
    WindowOf(dialog).close();
    Settle();
    EXPECT_TRUE(dialog.IsLoaded());
    EXPECT_TRUE(WindowOf(dialog).isVisible());
    dialog.refuses = false;
    WindowOf(dialog).close();
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
}

TEST_F(QtPresenterTest, CloseButton_OfAFormThatMustBeAnswered_DoesNothing) {
    auto& dialog = forms.Get<DemoDialog>(context);
    ui::WindowStyle style;
    style.closable = false;
    dialog.SetStyle(style);
    dialog.Show();
    Settle();
    EXPECT_FALSE(WindowOf(dialog).windowFlags() & Qt::WindowCloseButtonHint);
    WindowOf(dialog).close();
    Settle();
    EXPECT_TRUE(dialog.IsVisible());
    dialog.Unload();
}

TEST_F(QtPresenterTest, ModalForm_RunsTheSameLoop_AndEndsWhenItIsUnloaded) {
    auto& dialog = forms.Get<DemoDialog>(context);
    int ticks = 0;
    const auto timer = loop.StartTimer(u"t", 5, host::TimerReentry::Skipped, [&] {
        if (++ticks == 5) QTest::keyClick(&WindowOf(dialog), Qt::Key_Escape);
    });
    dialog.ShowModal();
    EXPECT_GE(ticks, 5);
    EXPECT_EQ(dialog.log, u"exit ");
    EXPECT_FALSE(dialog.IsVisible());
}

TEST_F(QtPresenterTest, LeavingDialogs_ClosesThoseThatWait_AndNoOthers) {
    auto& notice = forms.Get<DemoNotice>(context);
    notice.Show();
    auto& dialog = forms.Get<DemoDialog>(context);
    const auto timer = loop.StartTimer(u"t", 20, host::TimerReentry::Skipped, [&] { presenter.LeaveDialogs(); });
    dialog.ShowModal();
    EXPECT_FALSE(dialog.IsLoaded());
    EXPECT_TRUE(notice.IsVisible());
    notice.Unload();
}

TEST_F(QtPresenterTest, ModalForm_BlocksTheOneBelow) {
    auto& below = ShowDialog();
    auto& notice = forms.Get<DemoNotice>(context);
    ui::WindowStyle plain;
    notice.SetStyle(plain);
    loop.Post([&] {
        loop.Post([&] {
            QTest::mouseClick(WindowOf(below).windowHandle(), Qt::LeftButton, {},
                              WidgetNamed<QAbstractButton>(below, "Publish").mapTo(&WindowOf(below), QPoint(5, 5)));
            loop.Post([&] { notice.Unload(); });
        });
    });
    notice.ShowModal();
    Settle();
    EXPECT_EQ(below.log, u"");
}

TEST_F(QtPresenterTest, FormShownAgainAfterItsUnload_HasItsDesignBack) {
    auto& dialog = ShowDialog();
    dialog.txtBitrate.SetText(u"9");
    Settle();
    dialog.Unload();
    auto& again = ShowDialog();
    EXPECT_EQ(WidgetNamed<QLineEdit>(again, "Bitrate:").text(), "1200");
}

TEST_F(QtPresenterTest, Hide_TakesTheWindowOffTheScreen_ShowBringsItBack) {
    auto& dialog = ShowDialog();
    dialog.Hide();
    Settle();
    EXPECT_FALSE(WindowOf(dialog).isVisible());
    dialog.Show();
    EXPECT_TRUE(WindowOf(dialog).isVisible());
}

TEST_F(QtPresenterTest, Notice_IsPaintedByRefreshAlone_WithoutAnEventOfTheCore) {
    auto& notice = forms.Get<DemoNotice>(context);
    bool ran = false;
    loop.Post([&] { ran = true; });
    notice.Show();
    notice.Refresh();
    EXPECT_FALSE(ran);
    const FormWindow& window = WindowOf(notice);
    const QColor ground = ScreenColour(window.x() + 4, window.y() + 4);
    EXPECT_EQ(ground, QColor(0x24, 0x2B, 0x35));
    EXPECT_EQ(window.y(), 284);
    EXPECT_NEAR(window.x() + window.width() / 2, Screen::kWidth / 2, 1);
    Keep(window, "demo-notice.png");
}

TEST_F(QtPresenterTest, Notice_NeverTakesTheKeyboard) {
    auto& dialog = ShowDialog();
    auto& notice = forms.Get<DemoNotice>(context);
    notice.Show();
    notice.Refresh();
    Settle();
    EXPECT_TRUE(WindowOf(dialog).isActiveWindow());
    EXPECT_FALSE(WindowOf(notice).isActiveWindow());
}

TEST_F(QtPresenterTest, Notice_ComesBackOnTopOfAWindowThatCoversIt) {
    auto& notice = forms.Get<DemoNotice>(context);
    notice.Show();
    notice.Refresh();
    QWidget show(nullptr, Qt::Window | Qt::BypassWindowManagerHint);
    show.setGeometry(0, 0, Screen::kWidth, Screen::kHeight);
    show.setPalette(QPalette(Qt::green));
    show.show();
    show.raise();
    const QPoint spot = WindowOf(notice).pos() + QPoint(4, 4);
    EXPECT_TRUE(PumpUntil([&] { return ScreenColour(1, 1) == QColor(Qt::green); }));
    EXPECT_TRUE(PumpUntil([&] { return ScreenColour(spot.x(), spot.y()) == QColor(0x24, 0x2B, 0x35); }));
}

TEST_F(QtPresenterTest, Notice_ComesBackAtOnce_WithoutATimerOfTheCore) {
    auto& notice = forms.Get<DemoNotice>(context);
    notice.Show();
    notice.Refresh();
    const QRect place = WindowOf(notice).geometry();
    const auto isSeen = [&] { return ScreenColour(place.x() + 4, place.y() + 4) == QColor(0x24, 0x2B, 0x35); };
    real::TestWindow show(Screen::Get().Display(), 0, 0, Screen::kWidth, Screen::kHeight);
    show.Fill(0x00FF00);
    EXPECT_FALSE(isSeen());
    EXPECT_TRUE(real::WaitFor([&] {
        loop.PaintWindows(10);
        return isSeen();
    }));
    show.Raise();
    show.Fill(0x00FF00);
    EXPECT_TRUE(real::WaitFor([&] {
        loop.PaintWindows(10);
        return isSeen();
    })) << "and again";
}

TEST_F(QtPresenterTest, Mask_CoversExactlyItsPixels) {
    auto& mask = forms.Get<DemoMask>(context);
    mask.Show();
    mask.Refresh();
    EXPECT_EQ(WindowOf(mask).geometry(), QRect(3, 5, 7, 400));
    EXPECT_NEAR(WindowOf(mask).windowOpacity(), 150 / 255.0, 0.005);
    mask.SetBounds(10, 20, 100, 30);
    Settle();
    EXPECT_EQ(WindowOf(mask).geometry(), QRect(10, 20, 100, 30));
}

TEST_F(QtPresenterTest, Windows_CarryAMarkForCapture) {
    auto& dialog = ShowDialog();
    auto& notice = forms.Get<DemoNotice>(context);
    notice.Show();
    notice.Refresh();
    const auto markOf = [](host::WindowHandle window) -> int {
        const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
        xcb_connection_t* connection = x11->connection();
        auto* atom = xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 1, 19, kOwnWindowProperty), nullptr);
        auto* reply = xcb_get_property_reply(
            connection,
            xcb_get_property(connection, 0, static_cast<xcb_window_t>(window), atom->atom, XCB_ATOM_CARDINAL, 0, 1),
            nullptr);
        const int value =
            xcb_get_property_value_length(reply) == 4 ? *static_cast<const int*>(xcb_get_property_value(reply)) : -1;
        std::free(reply);
        std::free(atom);
        return value;
    };
    EXPECT_EQ(markOf(dialog.Window()), 0);
    EXPECT_EQ(markOf(notice.Window()), 1);
}

TEST_F(QtPresenterTest, Window_OfAFormOffScreen_IsZero) {
    auto& dialog = forms.Get<DemoDialog>(context);
    EXPECT_EQ(dialog.Window(), 0u);
    presenter.Close(dialog);
    presenter.Refresh(dialog);
}

}  // namespace
}  // namespace kestrum::qt
