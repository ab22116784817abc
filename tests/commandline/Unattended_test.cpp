#include "apps/commandline/Unattended.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"
#include "devices/frmVolSetting.h"

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

}  // namespace
}  // namespace kestrum::app
