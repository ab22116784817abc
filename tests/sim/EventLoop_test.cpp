#include "adapters/sim/EventLoop.h"

#include <gtest/gtest.h>

#include "adapters/sim/Failure.h"

namespace kestrum {
namespace {

using host::TimerReentry;

TEST(SimEventLoop, Pump_MovesNoTime) {
    sim::EventLoop loop;
    int fired = 0;
    auto timer = loop.StartTimer(u"t", 100, TimerReentry::Skipped, [&] { ++fired; });
    loop.DoEvents();
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(loop.Elapsed(), 0);
}

TEST(SimEventLoop, Sleep_DispatchesNothing_ThenOneRoundIsDue) {
    sim::EventLoop loop;
    int fired = 0;
    auto timer = loop.StartTimer(u"t", 100, TimerReentry::Skipped, [&] { ++fired; });
    loop.Sleep(350);
    EXPECT_EQ(fired, 0);
    loop.DoEvents();
    EXPECT_EQ(fired, 1);
    loop.Advance(50);
    EXPECT_EQ(fired, 2);
}

TEST(SimEventLoop, TimersDueTogether_RunInTheOrderOfTheirCreation) {
    sim::EventLoop loop;
    std::string order;
    auto slow = loop.StartTimer(u"a", 200, TimerReentry::Skipped, [&] { order += 'a'; });
    auto fast = loop.StartTimer(u"b", 100, TimerReentry::Skipped, [&] { order += 'b'; });
    loop.Advance(200);
    EXPECT_EQ(order, "bab");
}

TEST(SimEventLoop, Timer_MayEndItselfInsideItsCallback) {
    sim::EventLoop loop;
    int fired = 0;
    std::unique_ptr<host::ITimer> timer = loop.StartTimer(u"once", 10, TimerReentry::Skipped, [&] {
        ++fired;
        timer.reset();
    });
    loop.Advance(100);
    EXPECT_EQ(fired, 1);
}

TEST(SimEventLoop, FormTimer_IsNotEnteredAgain_SystemTimerIs) {
    for (TimerReentry reentry : {TimerReentry::Skipped, TimerReentry::Entered}) {
        sim::EventLoop loop;
        int depth = 0, deepest = 0;
        auto timer = loop.StartTimer(u"t", 10, reentry, [&] {
            deepest = std::max(deepest, ++depth);
            if (depth < 3) {
                loop.Sleep(10);
                loop.DoEvents();
            }
            --depth;
        });
        loop.Advance(10);
        EXPECT_EQ(deepest, reentry == TimerReentry::Skipped ? 1 : 3);
    }
}

TEST(SimEventLoop, RunUntil_AsksAfterEachEvent) {
    sim::EventLoop loop;
    bool done = false;
    int later = 0;
    loop.At(500, [&] { done = true; });
    loop.At(500, [&] { ++later; });
    loop.RunUntil([&] { return done; });
    EXPECT_EQ(loop.Elapsed(), 500);
    EXPECT_EQ(later, 0);
}

TEST(SimEventLoop, RunUntil_WithNothingLeftToHappen_FailsInsteadOfHanging) {
    sim::EventLoop loop;
    EXPECT_THROW(loop.RunUntil([] { return false; }), sim::Failure);
}

TEST(SimEventLoop, RunUntil_WithOnlyAHeartbeatLeft_FailsInsteadOfHanging) {
    sim::EventLoop loop;
    auto timer = loop.StartTimer(u"heartbeat", 20000, TimerReentry::Skipped, [] {});
    EXPECT_THROW(loop.RunUntil([] { return false; }), sim::Failure);
}

TEST(SimEventLoop, Tick_WrapsAsAThirtyTwoBitCounter) {
    sim::EventLoop loop;
    loop.SetFirstTick(2147483647);
    loop.Sleep(1);
    EXPECT_EQ(loop.TickCount(), std::numeric_limits<std::int32_t>::min());
}

TEST(SimEventLoop, Now_GoesWithTheClock) {
    sim::EventLoop loop;
    loop.Sleep(61500);
    EXPECT_EQ(loop.Now().hour, 9);
    EXPECT_EQ(loop.Now().minute, 1);
    EXPECT_EQ(loop.Now().second, 1);
    EXPECT_EQ(loop.Now().millisecond, 500);
}

}  // namespace
}  // namespace kestrum
