// The two tracers: which hook calls become events, what they answer, one object a window.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

constexpr std::uint32_t kGoingUp = 0x80000000;

struct Hooks : test::Lecture {
    host::WindowHandle window = world.windows.AddForeign(u"w", u"A window");
    CTracer tracer{session.c};
    CHooker hooker{session.c};
    int moves = 0, downs = 0;
    std::vector<std::int32_t> keys;

    Hooks() {
        tracer.OnSystemMouseMove = [this] { ++moves; };
        tracer.OnSystemMouseLeftDown = [this] { ++downs; };
        hooker.OnSystemKeyUp = [this](std::int32_t key) { keys.push_back(key); };
    }
};

TEST_F(Hooks, SecondTracerOnAWindow_NeitherHooksNorReplacesTheFirst) {
    tracer.StartMouseTracing(window);
    CTracer second(session.c);
    int heard = 0;
    second.OnSystemMouseLeftDown = [&] { ++heard; };
    second.StartMouseTracing(window);
    EXPECT_EQ(world.hooks.MouseHooks(), 1U);
    world.hooks.Mouse(0, 513, {});
    EXPECT_EQ(downs, 1);
    EXPECT_EQ(heard, 0);
}

TEST_F(Hooks, WindowThatIsNone_IsNotHooked) {
    tracer.StartMouseTracing(99999);
    hooker.StartKeyHooking(99999);
    EXPECT_EQ(world.hooks.MouseHooks() + world.hooks.KeyHooks(), 0U);
}

TEST_F(Hooks, DoubleClick_RaisesNothingAndEndsTheChain) {
    tracer.StartMouseTracing(window);
    EXPECT_EQ(world.hooks.Mouse(0, 515, {}), 0);
    EXPECT_EQ(world.hooks.chained, 0);
    EXPECT_EQ(downs, 0);
}

TEST_F(Hooks, KnownMouseEvent_IsRaisedThenPassedOn_OtherCodesAreNot) {
    tracer.StartMouseTracing(window);
    EXPECT_EQ(world.hooks.Mouse(0, 513, {}), world.hooks.nextAnswer);
    EXPECT_EQ(world.hooks.Mouse(3, 513, {}), 0);
    EXPECT_EQ(world.hooks.Mouse(0, 600, {}), 0);
    EXPECT_EQ(downs, 1);
    EXPECT_EQ(world.hooks.chained, 1);
}

TEST_F(Hooks, Coordinates_MoveWithMoveMessagesOnly) {
    tracer.StartMouseTracing(window);
    world.hooks.physicalCursor = {30, 40};
    world.hooks.cursor = {3, 4};
    world.hooks.Mouse(0, 512, {});
    EXPECT_EQ(tracer.CoordinateX, 30);
    world.hooks.physicalCursor = {50, 60};
    world.hooks.Mouse(0, 513, {});
    EXPECT_EQ(tracer.CoordinateX, 30);
    EXPECT_EQ(tracer.CoordinateY, 40);
    session.support.g_OsVersion = 51;
    world.hooks.Mouse(0, 512, {});
    EXPECT_EQ(tracer.CoordinateX, 3);
}

TEST_F(Hooks, WindowUnderTheMouse_HasItsTitle) {
    world.hooks.windowAtPhysicalPoint = world.windows.AddForeign(u"x", String(u"Title\0rest", 10));
    EXPECT_EQ(tracer.WindowTextUnderMouse(), u"Title");
}

TEST_F(Hooks, KeyThatGoesUp_IsTold_CutToItsLowByte_AndAlwaysPassedOn) {
    hooker.StartKeyHooking(window);
    EXPECT_EQ(world.hooks.Key(0, 119, 0), world.hooks.nextAnswer);
    world.hooks.Key(0, 119, kGoingUp);
    world.hooks.Key(0, 0x141, kGoingUp);
    world.hooks.Key(3, 65, kGoingUp);
    EXPECT_EQ(keys, (std::vector<std::int32_t>{119, 0x41}));
    EXPECT_EQ(world.hooks.chained, 4);
}

TEST_F(Hooks, Stop_TakesHookAndPropertyAway_AndAnotherCanStart) {
    tracer.StartMouseTracing(window);
    tracer.StopMouseTracing();
    EXPECT_EQ(world.hooks.MouseHooks(), 0U);
    CTracer second(session.c);
    second.StartMouseTracing(window);
    EXPECT_EQ(world.hooks.MouseHooks(), 1U);
}

TEST_F(Hooks, RefusedHook_LeavesNothingToStop) {
    world.faults.FailCall(u"hooks.InstallKeyHook", 1, sim::Once);
    hooker.StartKeyHooking(window);
    hooker.StopKeyHooking();
    EXPECT_EQ(world.hooks.KeyHooks(), 0U);
}

TEST_F(Hooks, HandlerThatEndsItsTracer_IsSurvived) {
    auto own = std::make_unique<CTracer>(session.c);
    own->OnSystemMouseLeftUp = [&] { own.reset(); };
    own->StartMouseTracing(window);
    world.hooks.Mouse(0, 514, {});
    EXPECT_EQ(world.hooks.MouseHooks(), 0U);
}

}  // namespace
}  // namespace kestrum
