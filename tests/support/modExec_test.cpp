// Child processes in their four ways.
#include "support/modExec.h"

#include "SupportWorld.h"
#include "support/frmExecCmd.h"

namespace kestrum {
namespace {

using namespace modExec;

class modExecTest : public SupportTest {
  protected:
    void Program(const String& name, std::int64_t ms, std::int32_t exitCode = 0) {
        world.processes.programs[name] = {ms, exitCode, nullptr};
        world.fs.Put(u"/opt/kestrum/" + name, "program");
    }
    void Run(const String& command, const std::vector<String>& parameters = {}, bool useShell = false) {
        auto& form = forms.Get<frmExecCmd>(c);
        form.InitCmd(command, parameters, useShell);
        form.ShowModal();
    }
};

TEST_F(modExecTest, ShellAndWait_LooksEvery250Ms_WhileEventsFlow) {
    Program(u"zip", 600);
    int events = 0;
    const auto timer = world.loop.StartTimer(u"t", 100, host::TimerReentry::Skipped, [&] { ++events; });
    ShellAndWait(c, u"zip -r -q ../a.zip *");
    EXPECT_EQ(world.loop.Elapsed(), 750);
    EXPECT_GE(events, 3);
    ASSERT_EQ(world.processes.Runs(u"zip").size(), 1u);
    EXPECT_EQ(world.processes.Runs(u"zip")[0].arguments, std::vector<String>{u"zip -r -q ../a.zip *"});
}

TEST_F(modExecTest, ShellAndWait_OfAProgramThatEndsWith259_Ends) {
    Program(u"odd", 100, 259);
    ShellAndWait(c, u"odd");
    EXPECT_EQ(world.loop.Elapsed(), 250);
}

TEST_F(modExecTest, ALineThatCannotBeStarted_ReturnsAtOnce_AndIsTraced) {
    ShellAndWait(c, u"nothing");
    EXPECT_EQ(RunCancellable(c, u"nothing"), 0);
    EXPECT_EQ(world.loop.Elapsed(), 0);
    EXPECT_EQ(world.trace.skipped.size(), 2u);
}

TEST_F(modExecTest, RunCancellable_GivesTheExitCode) {
    Program(u"pack", 250, 3);
    state.cancelRun = true;
    EXPECT_EQ(RunCancellable(c, u"pack"), 3) << "an old request does not count";
    EXPECT_EQ(world.loop.Elapsed(), 300);
}

TEST_F(modExecTest, RunCancellable_OnRequest_EndsTheChild) {
    Program(u"pack", 60000, 3);
    world.loop.After(1000, [&] { state.cancelRun = true; });
    EXPECT_EQ(RunCancellable(c, u"pack"), 0);
    EXPECT_LE(world.loop.Elapsed(), 1300);
    EXPECT_TRUE(world.processes.Runs(u"pack")[0].terminated);
}

TEST_F(modExecTest, ShellExecuteWait_WithoutParametersOrWaiting_OpensWithTheDesktop) {
    EXPECT_TRUE(ShellExecuteWait(c, u"/home/anna/index.html", {}, false));
    EXPECT_EQ(world.processes.opened, std::vector<String>{u"/home/anna/index.html"});
    world.processes.desktopOpens = false;
    EXPECT_FALSE(ShellExecuteWait(c, u"/home/anna/index.html", {}, false));
}

TEST_F(modExecTest, ShellExecuteWait_WhenWaiting_DispatchesNothing) {
    Program(u"ffmpeg", 950);
    int events = 0;
    const auto timer = world.loop.StartTimer(u"t", 10, host::TimerReentry::Skipped, [&] { ++events; });
    EXPECT_TRUE(ShellExecuteWait(c, u"/opt/kestrum/ffmpeg", {u"-i", u"a b.mp4"}, true));
    EXPECT_EQ(world.loop.Elapsed(), 1000);
    EXPECT_EQ(events, 0);
    EXPECT_EQ(world.processes.Runs(u"ffmpeg")[0].arguments, (std::vector<String>{u"-i", u"a b.mp4"}));
}

TEST_F(modExecTest, ShellExecuteWait_OfWhatCannotBeStarted_IsFalse) {
    EXPECT_FALSE(ShellExecuteWait(c, u"/opt/kestrum/nothing", {u"x"}, true));
}

TEST_F(modExecTest, ExecCmd_WaitsForTheTool_WhileEventsFlow) {
    Program(u"kseditor", 5000);
    int events = 0;
    const auto timer = world.loop.StartTimer(u"t", 1000, host::TimerReentry::Skipped, [&] { ++events; });
    Run(u"/opt/kestrum/kseditor ", {u"/home/anna/My lecture.ktr"});
    EXPECT_GE(world.loop.Elapsed(), 5000);
    EXPECT_LE(world.loop.Elapsed(), 5500);
    EXPECT_GE(events, 5);
    EXPECT_EQ(world.processes.Runs(u"kseditor")[0].arguments, std::vector<String>{u"/home/anna/My lecture.ktr"});
    EXPECT_TRUE(world.box.Shown().empty());
}

TEST_F(modExecTest, ExecCmd_WithoutACommand_TellsAndCloses) {
    Run(u"  ");
    EXPECT_EQ(LastBox(), u"Execution failed because command is empty!");
    EXPECT_EQ(world.box.Shown().back().title, u"frmExecCmd.tmrExec_Timer");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmExecCmd"));
}

TEST_F(modExecTest, ExecCmd_OfAMissingTool_TellsItsPath) {
    Run(u"/opt/kestrum/kseditor");
    EXPECT_EQ(LastBox(), u"Execution failed because \"/opt/kestrum/kseditor\" does not exist!");
    EXPECT_EQ(world.box.Shown().back().title, u"frmExecCmd.tmrExec_Timer");
}

TEST_F(modExecTest, ExecCmd_OfAToolThatCannotBeStarted_Closes) {
    Program(u"kseditor", 5000);
    world.faults.FailCall(u"processes.Start", 1, sim::Once);
    Run(u"/opt/kestrum/kseditor");
    EXPECT_TRUE(world.box.Shown().empty());
    EXPECT_FALSE(forms.IsFormLoaded(u"frmExecCmd"));
}

TEST_F(modExecTest, ExecCmd_ThroughTheShell_WaitsForTheEnd) {
    Program(u"attrib", 300);
    Run(u"/opt/kestrum/attrib", {u"-R"}, true);
    EXPECT_EQ(world.processes.Runs(u"attrib").size(), 1u);
    EXPECT_GE(world.loop.Elapsed(), 400);
}

TEST_F(modExecTest, ExecCmd_CannotBeClosedByTheUser_SoNoEditorDiesWithIt) {
    Program(u"kseditor", 5000);
    world.presenter.UserClosesInVain(u"frmExecCmd").After(2000);
    Run(u"/opt/kestrum/kseditor");
    EXPECT_FALSE(world.processes.Runs(u"kseditor")[0].terminated);
}

TEST_F(modExecTest, ExecCmd_OfAToolThatFails_LeavesALineInTheTrace) {
    Program(u"ksECT", 500, 1);
    Run(u"/opt/kestrum/ksECT", {u"/home/anna/a.ktr"});
    ASSERT_EQ(world.trace.notes.size(), 1u);
    EXPECT_EQ(world.trace.notes[0], u"/opt/kestrum/ksECT ended with exit code 1");
}

TEST_F(modExecTest, ExecCmd_OfAToolThatEndsWith259_Closes) {
    Program(u"odd", 500, 259);
    Run(u"/opt/kestrum/odd");
    EXPECT_FALSE(forms.IsFormLoaded(u"frmExecCmd"));
    EXPECT_LE(world.loop.Elapsed(), 1000);
}

TEST_F(modExecTest, ExecCmd_BringsTheToolsWindowForwardOnce) {
    Program(u"kseditor", 5000);
    host::WindowHandle window = 0;
    world.loop.After(2000, [&] { window = world.windows.AddForeign(u"editor", u"Editor", 4001); });
    Run(u"/opt/kestrum/kseditor");
    ASSERT_NE(window, 0u);
    EXPECT_EQ(state.childWindow, window);
    EXPECT_EQ(world.transcript.Count(u"windows.BringToFront"), 1);
}

TEST_F(modExecTest, ExecCmd_RunAgain_ForgetsTheLastTool) {
    Program(u"kseditor", 500);
    world.presenter.Do(u"frmExecCmd", u"cancel", [](ui::Form& form) { static_cast<frmExecCmd&>(form).Cancel(); });
    Run(u"/opt/kestrum/kseditor");
    Run(u"/opt/kestrum/kseditor");
    ASSERT_EQ(world.processes.Runs(u"kseditor").size(), 2u);
    EXPECT_FALSE(world.processes.Runs(u"kseditor")[1].terminated);
}

TEST_F(modExecTest, ExecCmd_OnCancel_EndsTheTool) {
    Program(u"kstool", 60000);
    world.presenter.Do(u"frmExecCmd", u"cancel", [](ui::Form& form) { static_cast<frmExecCmd&>(form).Cancel(); })
        .After(2000);
    Run(u"/opt/kestrum/kstool", {u"upload"});
    EXPECT_TRUE(world.processes.Runs(u"kstool")[0].terminated);
    EXPECT_LE(world.loop.Elapsed(), 2500);
}

}  // namespace
}  // namespace kestrum
