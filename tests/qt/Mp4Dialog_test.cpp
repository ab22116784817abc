// The MP4 dialog at its work, on a real display: each state whole, readable and worked by keys.
#include <gtest/gtest.h>

#include <QTest>

#include "qt/ProductForms.h"

namespace kestrum::qt {
namespace {

/// The MP4 dialog at its work, on the screen.
class Mp4DialogAtWork : public ProductFormsTest {
  protected:
    frmExportMp4& ShownDialog() {
        auto& dialog = forms.Get<frmExportMp4>(publishHere);
        dialog.Show();
        EXPECT_TRUE(PumpUntil([&] { return WindowOf(dialog).isActiveWindow(); }));
        Settle();
        return dialog;
    }
    void KeepWhole(const ui::Form& form, const char* state) {
        Keep(form, state);
        ExpectWhole(form);
    }
    /// Everything that is visible lies in the window and none of it over another.
    void ExpectWhole(const ui::Form& form) {
        EXPECT_TRUE(DisplayRect().contains(WindowOf(form).geometry()));
        QList<QWidget*> seen;
        for (auto* widget : WindowOf(form).findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            if (widget->isVisible()) seen.append(widget);
        for (const QWidget* one : seen) {
            EXPECT_TRUE(WindowOf(form).rect().contains(one->geometry())) << one->metaObject()->className();
            for (const QWidget* other : seen)
                EXPECT_TRUE(one == other || !one->geometry().intersects(other->geometry()));
        }
    }
    /// Presses Publish with the Enter key and does `act` once while it converts.
    void PublishAndWait(frmExportMp4& dialog, const std::function<void()>& act) {
        bool done = false;
        const auto watch = loop.StartTimer(u"watch", 20, host::TimerReentry::Entered, [&] {
            if (done || dialog.ProgressBar1.Value() == 0) return;
            done = true;
            act();
        });
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        EXPECT_TRUE(
            PumpUntil([&] { return !dialog.cmdPublish.Enabled() && dialog.cmdCancel.Caption() == u"Exit" && done; }));
        Settle();
    }
};

TEST_F(Mp4DialogAtWork, EscapeWhileItConverts_CancelsAndThenCloses) {
    world.ksOptimize.nextStatuses = {1234, 2345, 3456, 4567, 5678, 6789, 7890};
    auto& dialog = ShownDialog();
    PublishAndWait(dialog, [&] {
        KeepWhole(dialog, "-converting");
        QTest::keyClick(&WindowOf(dialog), Qt::Key_Escape);
    });
    EXPECT_TRUE(dialog.IsLoaded());
    EXPECT_EQ(dialog.txtConvert.Caption(), u"Convert to MP4 ... Cancelled");
    EXPECT_FALSE(world.fs.FolderExists(kOutput));
    KeepWhole(dialog, "-cancelled");
    QTest::keyClick(&WindowOf(dialog), Qt::Key_Escape);
    EXPECT_TRUE(PumpUntil([&] { return !dialog.IsLoaded(); }));
}

TEST_F(Mp4DialogAtWork, AMovieThatIsTooBig_IsToldInTheDialog) {
    world.ksOptimize.nextStatuses = {1234, 2345, host::job_status::kSizeLimit};
    auto& dialog = ShownDialog();
    PublishAndWait(dialog, [] {});
    EXPECT_NE(dialog.txtConvert.Caption().find(u"1.8 GB"), String::npos);
    KeepWhole(dialog, "-too-big");
}

TEST_F(Mp4DialogAtWork, EverythingAtOnceAndALongPath_FitOntoASmallScreen) {
    String name;
    for (int i = 0; i < 12; ++i) name += u"a long folder name";
    support.packagePath = u"/home/anna/" + name + u"/" + name + u"withoutanyblankinit/lecture.ktr";
    world.fs.AddDrive(u"/", host::DriveType::Fixed, 5 << 20);
    package.videoAttribute = 4;
    world.ksLib.Put(support.packagePath, package);
    auto& dialog = ShownDialog();
    dialog.Select(u"cmbResolution", 1);
    dialog.Select(u"cmbQuality", 1);
    dialog.Type(u"txtWidth", u"641");
    Settle();
    EXPECT_TRUE(dialog.lTip.Visible());
    EXPECT_TRUE(dialog.lSpace.Visible());
    KeepWhole(dialog, "-everything");
}

}  // namespace
}  // namespace kestrum::qt
