// What every event loop of Linux owes the core. A loop's test instantiates the suite with a type that has `loop` (the
// loop under test) and `trace` (what it notes).
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "adapters/linux/LoopBase.h"
#include "linux/RecordingTrace.h"

namespace kestrum::platform {

template <class Fixture>
class LoopContract : public testing::Test {
  public:
    using Timer = std::unique_ptr<host::ITimer>;

    LoopBase& Loop() { return m_fixture.loop; }
    RecordingTrace& Trace() { return m_fixture.trace; }
    Timer Every(std::int32_t ms, std::function<void()> callback,
                host::TimerReentry reentry = host::TimerReentry::Skipped) {
        return Loop().StartTimer(u"test", ms, reentry, std::move(callback));
    }
    void Note(const std::string& what) { log += what + " "; }

    std::string log;

  private:
    Fixture m_fixture;
};

TYPED_TEST_SUITE_P(LoopContract);

TYPED_TEST_P(LoopContract, Timers_ThatFellDueTogether_FireByDueTimeThenByCreation) {
    auto late = this->Every(30, [this] { this->Note("late"); });
    auto first = this->Every(10, [this] { this->Note("first"); });
    auto second = this->Every(10, [this] { this->Note("second"); });
    this->Loop().Sleep(60);
    this->Loop().DoEvents();
    EXPECT_EQ(this->log, "first second late ");
}

TYPED_TEST_P(LoopContract, Timer_ThatMissedManyTimes_FiresOnceAPump) {
    auto timer = this->Every(5, [this] { this->Note("tick"); });
    this->Loop().Sleep(50);
    this->Loop().DoEvents();
    EXPECT_EQ(this->log, "tick ");
}

TYPED_TEST_P(LoopContract, Timer_FiresAgainUntilItIsStopped) {
    int ticks = 0;
    auto timer = this->Every(1, [&] { ++ticks; });
    this->Loop().RunUntil([&] { return ticks == 3; });
    timer.reset();
    this->Loop().Sleep(20);
    this->Loop().DoEvents();
    EXPECT_EQ(ticks, 3);
}

TYPED_TEST_P(LoopContract, Timer_StoppedInsideItsOwnCallback_EndsQuietly) {
    typename TestFixture::Timer timer;
    int ticks = 0;
    timer = this->Every(1, [&] {
        timer.reset();
        ++ticks;
    });
    this->Loop().RunUntil([&] { return ticks == 1; });
    this->Loop().Sleep(20);
    this->Loop().DoEvents();
    EXPECT_EQ(ticks, 1);
}

TYPED_TEST_P(LoopContract, FormTimer_InANestedPumpOfItsCallback_IsNotEnteredAgain) {
    int depth = 0, deepest = 0, calls = 0;
    auto timer = this->Every(1, [&] {
        deepest = std::max(deepest, ++depth);
        this->Loop().Sleep(10);
        this->Loop().DoEvents();
        --depth;
        ++calls;
    });
    this->Loop().RunUntil([&] { return calls == 3; });
    EXPECT_EQ(deepest, 1);
}

TYPED_TEST_P(LoopContract, SystemTimer_InANestedPumpOfItsCallback_IsEnteredAgain) {
    int depth = 0, deepest = 0;
    auto timer = this->Every(
        1,
        [&] {
            deepest = std::max(deepest, ++depth);
            this->Loop().Sleep(10);
            if (depth < 3) this->Loop().DoEvents();
            --depth;
        },
        host::TimerReentry::Entered);
    this->Loop().RunUntil([&] { return deepest > 0; });
    EXPECT_EQ(deepest, 3);
}

TYPED_TEST_P(LoopContract, OtherTimers_FireInsideANestedPump) {
    auto inner = this->Every(1, [this] { this->Note("inner"); });
    bool ran = false;
    auto outer = this->Every(5, [&] {
        this->log.clear();
        this->Loop().Sleep(10);
        this->Loop().DoEvents();
        ran = true;
    });
    this->Loop().RunUntil([&] { return ran; });
    EXPECT_EQ(this->log, "inner ");
}

TYPED_TEST_P(LoopContract, PostedTasks_RunInOrderFromTheNextPump) {
    this->Loop().Post([this] { this->Note("a"); });
    this->Loop().Post([this] { this->Note("b"); });
    EXPECT_EQ(this->log, "");
    this->Loop().RunUntil([this] { return this->log == "a b "; });
}

TYPED_TEST_P(LoopContract, Task_ThatPostsItselfForEver_DoesNotHoldDoEvents) {
    int runs = 0;
    std::function<void()> again = [&] {
        ++runs;
        this->Loop().Post(again);
    };
    this->Loop().Post(again);
    this->Loop().DoEvents();
    EXPECT_GE(runs, 1);
    int ticks = 0;
    auto timer = this->Every(1, [&] { ++ticks; });
    this->Loop().RunUntil([&] { return ticks == 2; });
}

TYPED_TEST_P(LoopContract, Post_FromAnotherThread_WakesTheWaitingLoopAndRunsOnItsThread) {
    std::thread::id ranOn;
    std::thread poster([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        this->Loop().Post([&] { ranOn = std::this_thread::get_id(); });
    });
    this->Loop().RunUntil([&] { return ranOn != std::thread::id(); });
    poster.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TYPED_TEST_P(LoopContract, RunUntil_AsksAfterEachEvent) {
    this->Loop().Post([this] { this->Note("a"); });
    this->Loop().Post([this] { this->Note("b"); });
    this->Loop().RunUntil([this] { return !this->log.empty(); });
    EXPECT_EQ(this->log, "a ");
}

TYPED_TEST_P(LoopContract, RunUntil_AlreadyDone_HandlesNothing) {
    this->Loop().Post([this] { this->Note("a"); });
    this->Loop().RunUntil([] { return true; });
    EXPECT_EQ(this->log, "");
}

TYPED_TEST_P(LoopContract, RunUntil_InsideRunUntil_EndsTheInnerOneAlone) {
    bool innerDone = false, outerDone = false;
    this->Loop().Post([&] {
        this->Loop().Post([&] { innerDone = true; });
        this->Loop().RunUntil([&] { return innerDone; });
        EXPECT_FALSE(outerDone);
        this->Loop().Post([&] { outerDone = true; });
    });
    this->Loop().RunUntil([&] { return outerDone; });
    EXPECT_TRUE(innerDone);
}

TYPED_TEST_P(LoopContract, Sleep_PassesTimeAndDispatchesNothing) {
    auto timer = this->Every(1, [this] { this->Note("tick"); });
    this->Loop().Post([this] { this->Note("task"); });
    const std::int32_t before = this->Loop().TickCount();
    this->Loop().Sleep(40);
    EXPECT_GE(this->Loop().TickCount() - before, 40);
    EXPECT_EQ(this->log, "");
}

TYPED_TEST_P(LoopContract, Callback_ThatFails_IsNotedAndTheLoopGoesOn) {
    this->Loop().Post([] { throw host::Error(host::ErrorNumber::Overflow, u"Test", u"Too big."); });
    this->Loop().Post([] { throw std::runtime_error("odd"); });
    this->Loop().Post([this] { this->Note("after"); });
    this->Loop().RunUntil([this] { return !this->log.empty(); });
    ASSERT_EQ(this->Trace().lines.size(), 2u);
    EXPECT_EQ(this->Trace().lines[0], u"Too big.");
    EXPECT_NE(this->Trace().lines[1].find(u"odd"), String::npos);
}

TYPED_TEST_P(LoopContract, WatchedDescriptor_IsReportedWhileReadable_AndNotAfterItsWatchEnded) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    int reports = 0;
    auto watch = this->Loop().WatchDescriptor(ends[0], [&] { ++reports; });
    this->Loop().DoEvents();
    EXPECT_EQ(reports, 0);
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    this->Loop().RunUntil([&] { return reports >= 2; });
    watch.reset();
    const int seen = reports;
    this->Loop().DoEvents();
    EXPECT_EQ(reports, seen);
    close(ends[0]);
    close(ends[1]);
}

TYPED_TEST_P(LoopContract, Now_IsTheLocalTime) {
    const host::DateTime now = this->Loop().Now();
    const std::time_t seconds = std::time(nullptr);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    EXPECT_NEAR(now.hour * 60 + now.minute, parts.tm_hour * 60 + parts.tm_min, 1);
    EXPECT_GE(now.year, 2024);
    EXPECT_LT(now.millisecond, 1000);
}

REGISTER_TYPED_TEST_SUITE_P(LoopContract, Timers_ThatFellDueTogether_FireByDueTimeThenByCreation,
                            Timer_ThatMissedManyTimes_FiresOnceAPump, Timer_FiresAgainUntilItIsStopped,
                            Timer_StoppedInsideItsOwnCallback_EndsQuietly,
                            FormTimer_InANestedPumpOfItsCallback_IsNotEnteredAgain,
                            SystemTimer_InANestedPumpOfItsCallback_IsEnteredAgain, OtherTimers_FireInsideANestedPump,
                            PostedTasks_RunInOrderFromTheNextPump, Task_ThatPostsItselfForEver_DoesNotHoldDoEvents,
                            Post_FromAnotherThread_WakesTheWaitingLoopAndRunsOnItsThread, RunUntil_AsksAfterEachEvent,
                            RunUntil_AlreadyDone_HandlesNothing, RunUntil_InsideRunUntil_EndsTheInnerOneAlone,
                            Sleep_PassesTimeAndDispatchesNothing, Callback_ThatFails_IsNotedAndTheLoopGoesOn,
                            WatchedDescriptor_IsReportedWhileReadable_AndNotAfterItsWatchEnded, Now_IsTheLocalTime);

}  // namespace kestrum::platform
