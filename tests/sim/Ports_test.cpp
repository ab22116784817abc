// The small fakes: boxes, processes, windows, monitors.
#include <gtest/gtest.h>

#include "adapters/sim/Failure.h"
#include "adapters/sim/World.h"

namespace kestrum {
namespace {

TEST(SimMessageBox, Question_WithoutAPlannedAnswer_FailsTheTest) {
    sim::World world;
    EXPECT_EQ(world.box.Show(u"Read me", host::BoxButtons::Ok, u""), host::BoxAnswer::Ok);
    EXPECT_THROW(world.box.Show(u"Sure?", host::BoxButtons::OkCancel, u""), sim::Failure);
}

TEST(SimMessageBox, EventsRunWhileTheBoxIsOpen) {
    sim::World world;
    int beats = 0;
    auto timer = world.loop.StartTimer(u"t", 100, host::TimerReentry::Skipped, [&] { ++beats; });
    bool meanwhile = false;
    world.box.AnswerAfter(350, host::BoxAnswer::Cancel, [&] { meanwhile = true; });
    EXPECT_EQ(world.box.Show(u"Sure?", host::BoxButtons::OkCancel, u""), host::BoxAnswer::Cancel);
    EXPECT_EQ(beats, 3);
    EXPECT_TRUE(meanwhile);
}

TEST(SimProcesses, Program_EndsByTheClock_EvenIfNobodyPumps) {
    sim::World world;
    world.processes.programs[u"zip"] = {500, 3, [&](const std::vector<String>& arguments) {
                                            world.fs.Put(arguments.at(0), "zipped");
                                            return std::nullopt;
                                        }};
    auto process = world.host().processes.Start(u"/usr/bin/zip", {u"/tmp/user/a.zip"});
    EXPECT_FALSE(process->ExitCode());
    world.loop.Sleep(500);
    EXPECT_EQ(process->ExitCode(), 3);
    EXPECT_EQ(world.fs.Bytes(u"/tmp/user/a.zip"), "zipped");
}

TEST(SimProcesses, UnknownProgram_CannotBeStarted_AndATerminatedOneLeavesNothing) {
    sim::World world;
    EXPECT_THROW((void)world.processes.Start(u"nothing", {}), host::Error);
    bool ran = false;
    world.processes.programs[u"slow"] = {500, 0, [&](const auto&) {
                                             ran = true;
                                             return std::nullopt;
                                         }};
    auto process = world.processes.Start(u"slow", {});
    process->Terminate();
    world.loop.Advance(1000);
    EXPECT_EQ(process->ExitCode(), 137);
    EXPECT_FALSE(ran);
}

TEST(SimWindows, PostedMessage_ReachesTheProcedureFromAPump_UnlessTheWindowIsGone) {
    sim::World world;
    int got = 0;
    auto window = world.windows.CreateMessageWindow(u"w", [&](const host::WindowMessage& message) {
        got = message.message;
        return std::int64_t{0};
    });
    world.windows.PostMessage(window->Handle(), {5, 0, 0, {}});
    EXPECT_EQ(got, 0);
    world.loop.DoEvents();
    EXPECT_EQ(got, 5);
    world.windows.PostMessage(window->Handle(), {6, 0, 0, {}});
    window.reset();
    world.loop.DoEvents();
    EXPECT_EQ(got, 5);
}

TEST(SimMonitors, PointOutsideAll_HasNoMonitor_AndAScaledRecordIsSmallerThanItsMode) {
    sim::World world;
    auto second = world.monitors.AddRight(1280, 720);
    EXPECT_EQ(world.monitors.MonitorFromPoint({1920, 10}), second);
    EXPECT_FALSE(world.monitors.MonitorFromPoint({3300, 10}));
    world.monitors.all[0].scale = 1.5;
    EXPECT_EQ(world.monitors.MonitorRecord(0), (host::Rect{0, 0, 1280, 720}));
    EXPECT_EQ(world.monitors.CurrentMode(0)->width, 1920);
    EXPECT_EQ(world.monitors.LogicalToPhysical(0, {1280, 720}), (host::Point{1920, 1080}));
}

}  // namespace
}  // namespace kestrum
