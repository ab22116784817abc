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

TEST_F(Hooks, EachMouseMessage_RaisesItsOwnEvent) {
    std::vector<int> events;
    const auto tell = [&events](int number) { return [&events, number] { events.push_back(number); }; };
    tracer.OnSystemMouseMove = tell(1);
    tracer.OnSystemMouseWheel = tell(2);
    tracer.OnSystemMouseLeftDown = tell(3);
    tracer.OnSystemMouseLeftUp = tell(4);
    tracer.OnSystemMouseRightDown = tell(5);
    tracer.OnSystemMouseRightUp = tell(6);
    tracer.OnSystemMouseMiddleDown = tell(7);
    tracer.OnSystemMouseMiddleUp = tell(8);
    tracer.StartMouseTracing(window);
    for (std::int32_t message = 511; message <= 523; ++message) world.hooks.Mouse(0, message, {});
    EXPECT_EQ(events, (std::vector<int>{1, 3, 4, 5, 6, 7, 8, 2}));
    EXPECT_EQ(world.hooks.chained, 8) << "only an event that is known is passed on";
}

TEST_F(Hooks, SecondHookerOnAWindow_NeitherHooksNorReplacesTheFirst) {
    hooker.StartKeyHooking(window);
    CHooker second(session.c);
    int heard = 0;
    second.OnSystemKeyUp = [&](std::int32_t) { ++heard; };
    second.StartKeyHooking(window);
    EXPECT_EQ(world.hooks.KeyHooks(), 1U);
    world.hooks.Key(0, 65, kGoingUp);
    EXPECT_EQ(keys.size(), 1U);
    EXPECT_EQ(heard, 0);
}

TEST_F(Hooks, PropertyThatCannotBeSet_MeansNoHook) {
    world.windows.refuseProperties = true;
    tracer.StartMouseTracing(window);
    hooker.StartKeyHooking(window);
    EXPECT_EQ(world.hooks.MouseHooks() + world.hooks.KeyHooks(), 0U);
}

TEST_F(Hooks, RefusedMouseHook_LeavesNothingToStop_AndItsProperty) {
    world.faults.FailCall(u"hooks.InstallMouseHook", 1, sim::Once);
    tracer.StartMouseTracing(window);
    tracer.StopMouseTracing();
    EXPECT_NE(world.windows.Property(window, u"MouseHook"), 0U) << "a stop has nothing to do without a hook";
}

TEST_F(Hooks, SecondStop_TakesThePropertyAgain_OfATracerButNotOfAHooker) {
    tracer.StartMouseTracing(window);
    hooker.StartKeyHooking(window);
    tracer.StopMouseTracing();
    hooker.StopKeyHooking();
    CTracer laterTracer(session.c);
    CHooker laterHooker(session.c);
    laterTracer.StartMouseTracing(window);
    laterHooker.StartKeyHooking(window);
    tracer.StopMouseTracing();
    hooker.StopKeyHooking();
    EXPECT_EQ(world.windows.Property(window, u"MouseHook"), 0U) << "the tracer's handle kept its value";
    EXPECT_NE(world.windows.Property(window, u"KeyHook"), 0U);
    EXPECT_EQ(world.hooks.Mouse(0, 513, {}), 0) << "the callback finds no object";
    EXPECT_EQ(downs, 0);
}

TEST_F(Hooks, EndOfTheObject_StopsTheHook) {
    {
        CTracer shortTracer(session.c);
        CHooker shortHooker(session.c);
        shortTracer.StartMouseTracing(window);
        shortHooker.StartKeyHooking(window);
        EXPECT_EQ(world.hooks.MouseHooks() + world.hooks.KeyHooks(), 2U);
    }
    EXPECT_EQ(world.hooks.MouseHooks() + world.hooks.KeyHooks(), 0U);
    EXPECT_EQ(world.windows.Property(window, u"MouseHook") + world.windows.Property(window, u"KeyHook"), 0U);
}

TEST_F(Hooks, WindowUnderTheMouse_IsAskedByTheSystemsVersion_AndItsTitleIsCut) {
    world.hooks.windowAtPoint = world.windows.AddForeign(u"old", u"Old");
    world.hooks.windowAtPhysicalPoint = world.windows.AddForeign(u"new", String(300, u'n'));
    EXPECT_EQ(tracer.WindowHandleUnderMouse(), world.hooks.windowAtPhysicalPoint);
    EXPECT_EQ(tracer.WindowTextUnderMouse(), String(255, u'n'));
    session.support.g_OsVersion = 51;
    EXPECT_EQ(tracer.WindowTextUnderMouse(), u"Old");
}

}  // namespace
}  // namespace kestrum
