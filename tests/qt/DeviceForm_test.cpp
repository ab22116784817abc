// The device dialog on a real display: everything is on it, named, in reach of the keyboard; the camera's picture
// stays.
#include <xcb/xcb.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <set>

#include "devices/frmDevice.h"
#include "qt/ProductForms.h"
#include "ui/AccessKeys.h"

namespace kestrum::qt {
namespace {

/// Another program that draws into a window it was told of.
class Painter {
  public:
    Painter() : m_connection(xcb_connect(nullptr, nullptr)) {}
    ~Painter() { xcb_disconnect(m_connection); }
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    void Fill(std::uint64_t window, std::uint32_t colour) {
        const auto id = static_cast<xcb_window_t>(window);
        const xcb_gcontext_t gc = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, gc, id, XCB_GC_FOREGROUND, &colour);
        const xcb_rectangle_t all{0, 0, 4000, 4000};
        xcb_poly_fill_rectangle(m_connection, id, gc, 1, &all);
        xcb_free_gc(m_connection, gc);
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));  // it is drawn
    }

  private:
    xcb_connection_t* m_connection;
};

class DeviceFormTest : public ProductFormsTest {
  protected:
    DeviceFormTest() {
        support.g_OsVersion = 63;
        support.workFolder.clear();
        world.ksLib.audioDevices = u"Built-in Audio Analog Stereo##0_&&_USB Conference Speakerphone Mono##0";
        world.ksLib.videoDevices = u"Integrated Camera##0";
        world.ksLib.mixerSwitches = u"Microphone on";
        world.ksLib.audioVolume = 62;
        world.settings.Set(u"configure", u"videoSize", u"320x240");
    }
    frmDevice& ShowDialog() {
        auto& dialog = forms.Get<frmDevice>(devices::Context{projectHere, devices});
        dialog.Show();
        EXPECT_TRUE(PumpUntil([&] { return WindowOf(dialog).isActiveWindow() && !dialog.tmrInitDevice.Enabled(); }));
        Settle();
        return dialog;
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        Settle();
    }
    QColor OnScreen(const ui::Form& form, QPoint at) {
        const QImage picture = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        return picture.pixelColor(WindowOf(form).mapToGlobal(at));
    }
    /// The screen, where the camera's picture is on it too.
    void KeepScreen(const ui::Form& form, const std::string& variant = {}) {
        const std::string folder = std::string(places::kInstall) + "/../screenshots";
        std::filesystem::create_directories(folder);
        const QRect window = WindowOf(form).geometry();
        const QPixmap picture =
            QGuiApplication::primaryScreen()->grabWindow(0, window.x(), window.y(), window.width(), window.height());
        EXPECT_TRUE(picture.save(QString::fromStdString(folder + "/frmDevice" + variant + ".png")));
    }
    void ExpectNothingIsCut(const ui::Form& form) {
        EXPECT_TRUE(DisplayRect().contains(WindowOf(form).frameGeometry()));
        for (const auto* widget : WindowOf(form).findChildren<QWidget*>()) {
            const bool reads = qobject_cast<const QLabel*>(widget) || qobject_cast<const QAbstractButton*>(widget) ||
                               qobject_cast<const QComboBox*>(widget);
            if (!reads || !widget->isVisible()) continue;
            EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << qPrintable(widget->accessibleName());
            EXPECT_TRUE(
                WindowOf(form).rect().contains(QRect(widget->mapTo(&WindowOf(form), QPoint(0, 0)), widget->size())));
        }
    }
};

TEST_F(DeviceFormTest, ShowsDevicesLevelAndPicture) {
    auto& dialog = ShowDialog();
    Painter camera;
    camera.Fill(world.ksLib.previewWindow, 0x2060A0);
    EXPECT_TRUE(PumpUntil([&] { return dialog.InputLevel.Lit() > 0; }));
    Settle();
    KeepScreen(dialog);
    ExpectNothingIsCut(dialog);
    EXPECT_NE(WidgetWithText<QAbstractButton>(dialog, QStringLiteral("Save")), nullptr);
}

TEST_F(DeviceFormTest, FitsASmallScreen) {
    auto& dialog = ShowDialog();
    EXPECT_LE(WindowOf(dialog).frameGeometry().width(), 800);
    EXPECT_LE(WindowOf(dialog).frameGeometry().height(), 560);
}

TEST_F(DeviceFormTest, PictureOfAnotherProgram_StaysWhileTheDialogPaints) {
    auto& dialog = ShowDialog();
    Painter camera;
    const QWidget* surface = QWidget::find(static_cast<WId>(world.ksLib.previewWindow));
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(surface->size(), QSize(320, 240));
    camera.Fill(world.ksLib.previewWindow, 0xC03010);
    const QPoint middle = surface->mapTo(&WindowOf(dialog), surface->rect().center());
    EXPECT_EQ(OnScreen(dialog, middle), QColor(0xC0, 0x30, 0x10));
    dialog.lVolume.SetCaption(u"Louder:");
    dialog.Refresh();
    Settle();
    EXPECT_EQ(OnScreen(dialog, middle), QColor(0xC0, 0x30, 0x10));
    EXPECT_NE(OnScreen(dialog, QPoint(2, 2)), QColor(0xC0, 0x30, 0x10));
}

TEST_F(DeviceFormTest, WithTheCameraOff_ItsPlaceStays_AndSaysSo) {
    auto& dialog = ShowDialog();
    const QSize before = WindowOf(dialog).size();
    dialog.Click(u"chkVideo");
    Settle();
    KeepScreen(dialog, "-nocamera");
    EXPECT_EQ(WindowOf(dialog).size(), before);
    EXPECT_NE(WidgetWithText<QLabel>(dialog, QStringLiteral("Video device not enabled")), nullptr);
    ExpectNothingIsCut(dialog);
}

TEST_F(DeviceFormTest, RunningTest_ShowsItsStopButton_AtTheSamePlace) {
    auto& dialog = ShowDialog();
    const QSize before = WindowOf(dialog).size();
    dialog.SetFocus(dialog.cmdRecord);
    Settle();
    Press(Qt::Key_Space);
    EXPECT_FALSE(dialog.cmdRecord.Visible());
    EXPECT_EQ(dialog.Focus(), &dialog.cmdStopRecord);
    KeepScreen(dialog, "-test");
    EXPECT_EQ(WindowOf(dialog).size(), before);
    Press(Qt::Key_Escape);
    EXPECT_TRUE(dialog.IsLoaded()) << "closed for the time of the test";
    Press(Qt::Key_Space);
    EXPECT_TRUE(dialog.cmdRecord.Visible());
    Press(Qt::Key_Escape);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
}

TEST_F(DeviceFormTest, EveryChoice_HasANameAndALetter) {
    auto& dialog = ShowDialog();
    std::set<const ui::Control*> reached;
    for (const ui::AccessKey& key : ui::AccessKeysOf(dialog)) reached.insert(key.target);
    for (const ui::Control* control : dialog.TabOrder()) {
        EXPECT_FALSE(dialog.AccessibleNameOf(*control).empty()) << host::ToUtf8(control->Name());
        if (control == dialog.DefaultButton() || control == dialog.CancelButton() || !control->IsUsable()) continue;
        EXPECT_TRUE(reached.count(control)) << host::ToUtf8(control->Name()) << " has no letter";
    }
}

TEST_F(DeviceFormTest, TabKey_VisitsEveryChoiceOnce) {
    auto& dialog = ShowDialog();
    std::vector<ui::Control*> usable;
    for (ui::Control* control : dialog.TabOrder()) {
        if (control->IsUsable()) usable.push_back(control);
    }
    dialog.SetFocus(*usable.front());
    Settle();
    for (std::size_t i = 1; i < usable.size(); ++i) {
        Press(Qt::Key_Tab);
        ASSERT_EQ(dialog.Focus(), usable[i]) << host::ToUtf8(usable[i]->Name());
    }
}

TEST_F(DeviceFormTest, WithoutAnyDevice_SaysSo_AndCanBeLeft) {
    world.ksLib.audioDevices = world.ksLib.videoDevices = world.ksLib.mixerSwitches = u"";
    world.ksLib.checkAVDevice = -1;
    host::Host deaf = world.HostWith({.loop = &loop, .presenter = &qtPresenter});  // its box is answered by the script
    const support::Context here{deaf, forms, support};
    auto& dialog = forms.Get<frmDevice>(devices::Context{project::Context{here, project}, devices});
    dialog.Show();
    ASSERT_TRUE(PumpUntil([&] { return !world.box.Shown().empty() && !dialog.lDeviceChecking.Visible(); }));
    Settle();
    KeepScreen(dialog, "-nodevices");
    EXPECT_EQ(world.box.Shown().size(), 1u);
    EXPECT_FALSE(dialog.cmdSave.Enabled());
    Press(Qt::Key_Escape);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
}

TEST_F(DeviceFormTest, WithALargeFont_NothingIsCut) {
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(usual.pointSizeF() * 1.4);
    QApplication::setFont(large);
    auto& dialog = ShowDialog();
    KeepScreen(dialog, "-large");
    ExpectNothingIsCut(dialog);
    dialog.Unload();
    QApplication::setFont(usual);
}

}  // namespace
}  // namespace kestrum::qt
