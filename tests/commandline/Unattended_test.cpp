#include "apps/commandline/Unattended.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "devices/frmVolSetting.h"
#include "publish/PublishWorld.h"

namespace kestrum::app {
namespace {

TEST(UnattendedBox, EachQuestionGetsTheAnswerThatGoesOn) {
    Console console{false};
    UnattendedBox box(console);
    EXPECT_EQ(box.Show(u"Repair it?", host::BoxButtons::YesNo, u""), host::BoxAnswer::Yes);
    EXPECT_EQ(box.Show(u"Go on?", host::BoxButtons::OkCancel, u""), host::BoxAnswer::Ok);
    EXPECT_EQ(box.Show(u"No space.", host::BoxButtons::RetryCancel, u""), host::BoxAnswer::Cancel);
    EXPECT_EQ(box.Show(u"Read me.", host::BoxButtons::Ok, u""), host::BoxAnswer::Ok);
}

TEST(UnattendedBox, AProjectFileThatCannotBeRead_IsLeftAsItIs) {
    Console console{false};
    UnattendedBox box(console);
    EXPECT_EQ(box.Show(u"...", host::BoxButtons::OkCancel, u"Load project.ksp"), host::BoxAnswer::Cancel);
}

TEST(UnattendedBox, AQuestionThatIsToBeRefused_GetsNo) {
    Console console{false};
    UnattendedBox box(console);
    box.AnswerNo(u"Watch it now?");
    EXPECT_EQ(box.Show(u"Watch it now?", host::BoxButtons::YesNo, u""), host::BoxAnswer::No);
}

TEST(UnattendedBox, TheLastMessage_IsKeptForTheSentenceOfAFailure) {
    Console console{false};
    UnattendedBox box(console);
    box.Show(u"Repair it?", host::BoxButtons::YesNo, u"");
    EXPECT_EQ(box.LastMessage(), u"");
    box.Show(u"It is broken.", host::BoxButtons::Ok, u"");
    EXPECT_EQ(box.LastMessage(), u"It is broken.");
}

TEST(UnattendedPresenter, AModalForm_GetsItsButtonPressed) {
    sim::World world;
    Console console{false};
    NoScreen screen(world.loop);
    UnattendedPresenter presenter(screen, world.loop, console);
    ui::Forms forms(presenter, world.loop);
    support::State supportState;
    support::Context supportContext{world.host(), forms, supportState};
    project::State projectState(supportContext);
    devices::State devicesState;
    const devices::Context c{project::Context{supportContext, projectState}, devicesState};
    c.devices.g_DialogResult = 2;
    forms.Get<frmVolSetting>(c).ShowModal();
    EXPECT_EQ(c.devices.g_DialogResult, 1) << "the recording goes on";
}

/// The publish dialog, run by itself.
class UnattendedPublishing : public testing::Test, protected test::PublishWorld {
  protected:
    frmExportMp4& Dialog() { return forms.Get<frmExportMp4>(here); }
    void Run() {
        world.box.Answer(host::BoxAnswer::No);
        Dialog().ShowModal();
    }

    Console console;
    NoScreen screen{world.loop};
    UnattendedPresenter unattended{screen, world.loop, console};
    ui::Forms forms{unattended, world.loop};
    project::Context projectHere{support::Context{world.host(), forms, support}, project};
    publish::Context here{projectHere, published};
};

TEST_F(UnattendedPublishing, TheDialogIsFilledInBeforeItsButtonIsPressed) {
    unattended.FillIn(u"frmExportMp4", [](ui::Form& form) {
        form.Select(u"cmbQuality", 1);
        form.Type(u"TxtCustomBitrate", u"900");
        return String();
    });
    Run();
    EXPECT_EQ(world.transcript.Only(u"ksOptimize.SetCustomBitrate"),
              std::vector<String>{u"ksOptimize.SetCustomBitrate 900"});
    EXPECT_FALSE(published.publishedPage.empty());
}

TEST_F(UnattendedPublishing, ADialogThatDoesNotOfferWhatIsWanted_IsLeftWithTheSentence) {
    unattended.FillIn(u"frmExportMp4", [](ui::Form&) { return String(u"There is no webcam."); });
    Dialog().ShowModal();
    EXPECT_EQ(unattended.LastMessage(), u"There is no webcam.");
    EXPECT_FALSE(world.fs.FolderExists(kOutput));
}

TEST_F(UnattendedPublishing, ARequestToEndThatComesTooEarly_IsMadeAgainWhileItConverts) {
    // Between the press and the conversion, which clears the flag that the press has set.
    world.ksOptimize.nextStatuses = {100, 200, 300, 400, 500, 600, 700, 800};
    bool asked = false;
    const auto early = world.loop.StartTimer(u"ask", 10, host::TimerReentry::Entered, [&] {
        if (asked || !forms.IsFormLoaded(u"frmExportMp4") || Dialog().cmdPublish.Enabled()) return;
        asked = true;
        unattended.CancelWork();
    });
    Dialog().ShowModal();
    EXPECT_TRUE(asked);
    EXPECT_TRUE(published.publishedPage.empty());
    EXPECT_FALSE(world.fs.FolderExists(kOutput));
}

TEST_F(UnattendedPublishing, ARequestToEndBeforeTheWork_LeavesTheDialog) {
    unattended.FillIn(u"frmExportMp4", [this](ui::Form&) {
        unattended.CancelWork();
        return String(u"ended");
    });
    Dialog().ShowModal();
    EXPECT_FALSE(world.fs.FolderExists(kOutput));
}

}  // namespace
}  // namespace kestrum::app
