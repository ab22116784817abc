// The two tracers of the recorder on a real display: real keys and clicks become their events, and the window under the
// pointer has its title.
#include <gtest/gtest.h>

#include "adapters/linux/X11Hooks.h"
#include "adapters/linux/X11Windows.h"
#include "adapters/sim/World.h"
#include "addin/Session.h"
#include "linux/Desk.h"

namespace kestrum::platform {
namespace {

class TracersTest : public DeskTest {
  protected:
    xcb_window_t ShowWindow(const std::string& title) {
        xcb_connection_t* connection = display.Get();
        const xcb_window_t shown = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, shown, display.Root(), 100, 100, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, shown, display.Atom("_NET_WM_NAME"),
                            display.Atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(title.size()), title.data());
        xcb_map_window(connection, shown);
        display.Flush();
        return shown;
    }
    std::function<void()> Tell(int number) {
        return [this, number] { events.push_back(number); };
    }

    X11Connection display;
    RawInput input{loop};
    X11Hooks hooks{input, display};
    X11Windows windows{loop, display};
    sim::World world;
    host::Host host = world.HostWith({.hooks = &hooks, .windows = &windows});
    Session session{host};
    std::unique_ptr<host::IMessageWindow> window =
        windows.CreateMessageWindow(u"frmViewer", [](const host::WindowMessage&) { return 0; });
    std::vector<int> events;
};

TEST_F(TracersTest, MouseTracer_TellsTheEightEvents) {
    CTracer tracer(session.c);
    tracer.OnSystemMouseMove = Tell(1);
    tracer.OnSystemMouseWheel = Tell(2);
    tracer.OnSystemMouseLeftDown = Tell(3);
    tracer.OnSystemMouseLeftUp = Tell(4);
    tracer.OnSystemMouseRightDown = Tell(5);
    tracer.OnSystemMouseRightUp = Tell(6);
    tracer.OnSystemMouseMiddleDown = Tell(7);
    tracer.OnSystemMouseMiddleUp = Tell(8);
    tracer.StartMouseTracing(window->Handle());
    Act({"mousemove_relative", "20", "10", "click", "1", "click", "3", "click", "2", "click", "5"});
    ASSERT_TRUE(PumpUntil([&] { return !events.empty() && events.back() == 2; }));
    EXPECT_EQ(events, (std::vector<int>{1, 3, 4, 5, 6, 7, 8, 2}));
    tracer.StopMouseTracing();
    Act({"click", "1"});
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_EQ(events.size(), 8u);
}

TEST_F(TracersTest, MouseTracer_KnowsTheWindowUnderThePointer) {
    const xcb_window_t below = ShowWindow("演示文稿 — Slide show");
    CTracer tracer(session.c);
    tracer.OnSystemMouseMove = Tell(1);
    tracer.StartMouseTracing(window->Handle());
    EXPECT_EQ(tracer.WindowTextUnderMouse(), u"") << "the bare desktop";
    Act({"mousemove", "10", "10", "mousemove_relative", "130", "120"});
    ASSERT_TRUE(PumpUntil([&] { return tracer.CoordinateX == 140; }));
    EXPECT_EQ(tracer.CoordinateY, 130);
    EXPECT_EQ(tracer.WindowHandleUnderMouse(), below);
    EXPECT_EQ(tracer.WindowTextUnderMouse(), u"演示文稿 — Slide show");
}

TEST_F(TracersTest, MouseTracer_ReadsThePointerAtMovesOnly) {
    CTracer tracer(session.c);
    tracer.OnSystemMouseMove = Tell(1);
    tracer.OnSystemMouseLeftUp = Tell(4);
    Act({"mousemove", "50", "60"});
    tracer.StartMouseTracing(window->Handle());
    Act({"click", "1"});
    ASSERT_TRUE(PumpUntil([&] { return !events.empty(); }));
    EXPECT_EQ(events, std::vector<int>{4});
    EXPECT_EQ(tracer.CoordinateX, 0);
    EXPECT_EQ(tracer.CoordinateY, 0);
}

TEST_F(TracersTest, KeyTracer_TellsKeysThatGoUp_ThoughAMenuHasTheKeyboard) {
    X11Connection menu;
    const XReply<xcb_grab_keyboard_reply_t> grab(xcb_grab_keyboard_reply(
        menu.Get(),
        xcb_grab_keyboard(menu.Get(), 0, menu.Root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
    CHooker hooker(session.c);
    hooker.OnSystemKeyUp = [this](std::int32_t key) { events.push_back(key); };
    hooker.StartKeyHooking(window->Handle());
    Act({"keydown", "F8"});
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_TRUE(events.empty());
    Act({"keyup", "F8", "key", "Escape", "key", "a"});
    ASSERT_TRUE(PumpUntil([&] { return events.size() >= 3; }));
    EXPECT_EQ(events, (std::vector<int>{119, 27, 'A'}));
}

}  // namespace
}  // namespace kestrum::platform
