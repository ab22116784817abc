// Hooks and the hook library on a real display, with keys and clicks of a real tool.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include "adapters/linux/LinuxKsHook.h"
#include "adapters/linux/VirtualKey.h"
#include "adapters/linux/X11Hooks.h"
#include "linux/Desk.h"

namespace kestrum::platform {
namespace {

class InputTest : public DeskTest {
  protected:
    std::unique_ptr<host::IMessageWindow> MakeTarget() {
        return windows.CreateMessageWindow(u"frmViewer", [this](const host::WindowMessage& message) {
            received.push_back(message);
            return 0;
        });
    }
    bool Has(std::int32_t message) const {
        return std::any_of(received.begin(), received.end(), [&](const auto& one) { return one.message == message; });
    }

    real::TempFolder folder;
    X11Connection display;
    RawInput input{loop};
    X11Windows windows{loop, display};
    X11Hooks hooks{input, display};
    LinuxKsHook ksHook{input, display, windows, folder / "lock"};
    std::vector<host::WindowMessage> received;
};

TEST_F(InputTest, KeyHook_HearsKeysGoingDownAndUp_ThoughAnotherProgramHasTheKeyboard) {
    X11Connection other;
    xcb_grab_keyboard_reply_t* grab = xcb_grab_keyboard_reply(
        other.Get(),
        xcb_grab_keyboard(other.Get(), 0, other.Root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr);
    ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
    std::free(grab);
    std::vector<std::pair<std::int32_t, bool>> keys;
    const auto hook = hooks.InstallKeyHook([&](std::int32_t code, std::int32_t key, std::uint32_t flags) {
        EXPECT_EQ(code, 0);
        keys.emplace_back(key, (flags & 0x80000000) != 0);
        return 0;
    });
    ASSERT_NE(hook, nullptr);
    Act({"key", "F8"});
    ASSERT_TRUE(PumpUntil([&] { return keys.size() >= 2; }));
    EXPECT_EQ(keys, (std::vector<std::pair<std::int32_t, bool>>{{119, false}, {119, true}}));
}

TEST_F(InputTest, MouseHook_GivesTheCoresMessages) {
    std::vector<std::int32_t> messages;
    host::MouseRecord last;
    const auto hook = hooks.InstallMouseHook([&](std::int32_t, std::int32_t message, const host::MouseRecord& record) {
        messages.push_back(message);
        last = record;
        return 0;
    });
    Act({"mousemove", "100", "40", "mousemove_relative", "23", "5", "click", "1", "click", "3", "click", "2", "click",
         "4"});
    ASSERT_TRUE(PumpUntil([&] { return !messages.empty() && messages.back() == 522; }));
    EXPECT_EQ(messages, (std::vector<std::int32_t>{512, 513, 514, 516, 517, 519, 520, 522}));
    EXPECT_EQ(last.x, 123);
    EXPECT_EQ(last.y, 45);
    EXPECT_EQ(last.mouseData, 120 * 65536);
    EXPECT_EQ(hooks.CursorPosition(), (host::Point{123, 45}));
    EXPECT_EQ(hooks.PhysicalCursorPosition(), (host::Point{123, 45}));
}

TEST_F(InputTest, RemovedHook_HearsNothing_EvenInsideItsOwnCallback) {
    int heard = 0;
    std::unique_ptr<host::IHook> hook;
    hook = hooks.InstallKeyHook([&](std::int32_t, std::int32_t, std::uint32_t) {
        ++heard;
        hook.reset();
        return 0;
    });
    Act({"key", "a", "key", "b"});
    ASSERT_TRUE(PumpUntil([&] { return heard > 0; }));
    int others = 0;
    const auto second = hooks.InstallKeyHook([&](std::int32_t, std::int32_t, std::uint32_t) { return ++others, 0; });
    Act({"key", "c"});
    ASSERT_TRUE(PumpUntil([&] { return others >= 2; }));
    EXPECT_EQ(heard, 1);
}

TEST_F(InputTest, WindowFromPoint_IsTheProgramsWindow) {
    xcb_connection_t* connection = display.Get();
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, display.Root(), 100, 100, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection, window);
    display.Flush();
    EXPECT_EQ(hooks.WindowFromPoint({150, 150}), window);
    EXPECT_EQ(hooks.WindowFromPhysicalPoint({150, 150}), window);
    EXPECT_EQ(hooks.WindowFromPoint({10, 10}), 0u);
}

TEST_F(InputTest, HotKeys_BecomeTheirMessages_OnlyWhileEnabled) {
    const auto target = MakeTarget();
    ASSERT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    Act({"key", "F9", "mousemove_relative", "5", "6"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x8001); }));
    EXPECT_FALSE(Has(0x8009));
    ksHook.EnableHotKey(1);
    received.clear();
    Act({"key", "F9", "key", "F10", "key", "F11", "key", "F12"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x800C); }));
    ASSERT_EQ(received.size(), 4u);
    EXPECT_EQ(received[0].message, 0x8009);
    EXPECT_EQ(received[1].message, 0x800A);
    EXPECT_EQ(received[2].message, 0x800B);
    ksHook.EnableHotKey(0);
    received.clear();
    Act({"key", "F12", "mousemove_relative", "50", "60"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x8001); }));
    EXPECT_FALSE(Has(0x800C));
}

TEST_F(InputTest, HotKeys_Work_ThoughTheShowHasTheKeyboardAndAMenuThePointer) {
    const auto target = MakeTarget();
    ASSERT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    ksHook.EnableHotKey(1);
    X11Connection show;
    const XReply<xcb_grab_keyboard_reply_t> keyboard(xcb_grab_keyboard_reply(
        show.Get(),
        xcb_grab_keyboard(show.Get(), 0, show.Root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    const XReply<xcb_grab_pointer_reply_t> pointer(xcb_grab_pointer_reply(
        show.Get(),
        xcb_grab_pointer(show.Get(), 0, show.Root(), XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    ASSERT_TRUE(keyboard && keyboard->status == XCB_GRAB_STATUS_SUCCESS);
    ASSERT_TRUE(pointer && pointer->status == XCB_GRAB_STATUS_SUCCESS);
    Act({"key", "F9", "key", "F10", "key", "F11", "click", "1", "key", "F12"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x800C); }));
    std::vector<std::int32_t> messages;
    for (const auto& message : received) messages.push_back(message.message);
    EXPECT_EQ(messages, (std::vector<std::int32_t>{0x8009, 0x800A, 0x800B, 0x8002, 0x8003, 0x800C}));
}

TEST_F(InputTest, HotKeyWithAModifier_IsAnotherProgramsKey) {
    const auto target = MakeTarget();
    ASSERT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    ksHook.EnableHotKey(1);
    Act({"key", "ctrl+F12", "key", "F10"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x800A); }));
    EXPECT_FALSE(Has(0x800C));
}

TEST_F(InputTest, HeldHotKey_CountsOnce) {
    const auto target = MakeTarget();
    ASSERT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    ksHook.EnableHotKey(1);
    Act({"keydown", "F12", "sleep", "1.2", "keyup", "F12", "key", "F10"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x800A); }));
    EXPECT_EQ(std::count_if(received.begin(), received.end(), [](const auto& m) { return m.message == 0x800C; }), 1);
}

TEST_F(InputTest, PenStrokes_BecomeMessagesWithThePointer) {
    const auto target = MakeTarget();
    ASSERT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    Act({"mousemove", "30", "40", "click", "1", "click", "3"});
    ASSERT_TRUE(PumpUntil([&] { return Has(0x8004); }));
    EXPECT_TRUE(Has(0x8002));
    EXPECT_TRUE(Has(0x8003));
    EXPECT_EQ(received.back().first, 30);
    EXPECT_EQ(received.back().second, 40);
}

TEST_F(InputTest, SecondRecorderOfTheUser_GetsNoHook_UntilTheFirstLetsGo) {
    const auto target = MakeTarget();
    LinuxKsHook second(input, display, windows, folder / "lock");
    EXPECT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    EXPECT_EQ(second.InstallMessageHook(target->Handle(), 0), 0);
    ksHook.UnInstallMessageHook();
    ksHook.UnInstallMessageHook();
    EXPECT_EQ(second.InstallMessageHook(target->Handle(), 0), 1);
}

TEST_F(InputTest, MessagesOnTheirWay_WhenTheWindowGoes_AreLostQuietly) {
    auto target = MakeTarget();
    ASSERT_EQ(ksHook.InstallMessageHook(target->Handle(), 0), 1);
    windows.Post(target->Handle(), {1, 2, 3, {}});
    target.reset();
    Act({"click", "1"});
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_TRUE(received.empty());
    EXPECT_TRUE(trace.lines.empty());
}

TEST_F(InputTest, ServerThatDies_LeavesTheLoopAtRest) {
    const auto hook = hooks.InstallKeyHook([](std::int32_t, std::int32_t, std::uint32_t) { return 0; });
    server.Kill();
    bool done = false;
    int turns = 0;
    const auto timer = loop.StartTimer(u"t", 100, host::TimerReentry::Skipped, [&] { done = true; });
    loop.RunUntil([&] { return ++turns, done; });
    EXPECT_LT(turns, 20) << "a dead connection must not keep the loop busy";
    EXPECT_EQ(hooks.WindowFromPoint({1, 1}), 0u);
}

TEST(InputWithoutDisplay, HooksAreRefused) {
    const real::ScopedEnv none("DISPLAY", "");
    RecordingTrace trace;
    EventLoop loop(trace);
    X11Connection display;
    RawInput input(loop);
    X11Windows windows(loop, display);
    X11Hooks hooks(input, display);
    LinuxKsHook ksHook(input, display, windows, "/tmp/kestrum-none.lock");
    EXPECT_EQ(hooks.InstallKeyHook({}), nullptr);
    EXPECT_EQ(hooks.InstallMouseHook({}), nullptr);
    EXPECT_EQ(ksHook.InstallMessageHook(1, 0), 0);
    EXPECT_EQ(hooks.WindowFromPoint({1, 1}), 0u);
}

TEST(VirtualKeys, AreTheCoresNumbers) {
    EXPECT_EQ(VirtualKey(0xFFC5), 119);  // F8
    EXPECT_EQ(VirtualKey(0xFFC9), 123);  // F12
    EXPECT_EQ(VirtualKey('a'), 'A');
    EXPECT_EQ(VirtualKey('7'), '7');
    EXPECT_EQ(VirtualKey(0xFF1B), 27);  // Escape
    EXPECT_EQ(VirtualKey(0x1008FF13), 0);
}

}  // namespace
}  // namespace kestrum::platform
