#include "adapters/linux/X11Windows.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "adapters/linux/EventLoop.h"
#include "linux/RecordingTrace.h"
#include "real/XvfbServer.h"

namespace kestrum::platform {
namespace {

using host::WindowMessage;

class X11WindowsTest : public testing::Test {
  protected:
    std::unique_ptr<host::IMessageWindow> Make(const String& name) {
        return windows.CreateMessageWindow(name, [this](const WindowMessage& message) {
            received.push_back(message);
            return 42;
        });
    }
    xcb_window_t MapWindow(std::uint32_t processId) {
        xcb_connection_t* connection = display.Get();
        const xcb_window_t window = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, display.Root(), 0, 0, 50, 50, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, display.Atom("_NET_WM_PID"), XCB_ATOM_CARDINAL,
                            32, 1, &processId);
        xcb_map_window(connection, window);
        display.Flush();
        return window;
    }

    real::XvfbServer server;
    real::ScopedEnv variable = server.Use();
    RecordingTrace trace;
    EventLoop loop{trace};
    X11Connection display;
    X11Windows windows{loop, display};
    std::vector<WindowMessage> received;
};

TEST_F(X11WindowsTest, OwnWindow_AnswersAtOnce) {
    const auto window = Make(u"frmViewer");
    EXPECT_TRUE(windows.IsWindow(window->Handle()));
    EXPECT_EQ(windows.SendMessage(window->Handle(), {1143, 70, 0, {}}), 42);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].first, 70);
}

TEST_F(X11WindowsTest, Post_ComesFromTheNextPump) {
    const auto window = Make(u"w");
    windows.Post(window->Handle(), {7, 0, 0, {}});
    EXPECT_TRUE(received.empty());
    loop.DoEvents();
    EXPECT_EQ(received.size(), 1u);
}

TEST_F(X11WindowsTest, DestroyedWindow_IsNone) {
    auto window = Make(u"w");
    const auto handle = window->Handle();
    EXPECT_TRUE(windows.SetProperty(handle, u"KeyHook", 5));
    window.reset();
    EXPECT_FALSE(windows.IsWindow(handle));
    EXPECT_EQ(windows.Property(handle, u"KeyHook"), 0u);
    EXPECT_EQ(windows.SendMessage(handle, {1, 0, 0, {}}), 0);
    EXPECT_FALSE(windows.SetProperty(handle, u"KeyHook", 5));
}

TEST_F(X11WindowsTest, Properties_AreKeptByWindowAndName) {
    const auto a = Make(u"a"), b = Make(u"b");
    EXPECT_EQ(windows.Property(a->Handle(), u"MouseHook"), 0u);
    EXPECT_TRUE(windows.SetProperty(a->Handle(), u"MouseHook", 0xFFFFFFFFFFFF));
    EXPECT_EQ(windows.Property(a->Handle(), u"MouseHook"), 0xFFFFFFFFFFFFu);
    EXPECT_EQ(windows.Property(b->Handle(), u"MouseHook"), 0u);
    EXPECT_EQ(windows.Property(a->Handle(), u"KeyHook"), 0u);
    windows.RemoveProperty(a->Handle(), u"MouseHook");
    EXPECT_EQ(windows.Property(a->Handle(), u"MouseHook"), 0u);
}

TEST_F(X11WindowsTest, FindWindow_GoesByClassOrTitle) {
    const auto window = Make(u"LarkspinWin 讲座");
    EXPECT_EQ(windows.FindWindow(u"LarkspinWin 讲座", u""), window->Handle());
    EXPECT_EQ(windows.FindWindow(u"", u"LarkspinWin 讲座"), window->Handle());
    EXPECT_EQ(windows.FindWindow(u"", u"LarkspinWin"), std::nullopt);
    EXPECT_EQ(windows.FindWindow(u"LarkspinWin 讲座", u"other"), std::nullopt);
    EXPECT_EQ(windows.WindowText(window->Handle(), 255), u"LarkspinWin 讲座");
    EXPECT_EQ(windows.WindowText(window->Handle(), 4), u"Lark");
}

TEST_F(X11WindowsTest, MessageToAnotherProcess_ArrivesWithItsBytesInOrder) {
    const auto window = Make(u"LarkspinWin");
    std::string title = "Slide 1";
    title += std::string("\0\0", 2);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        RecordingTrace ownTrace;
        EventLoop ownLoop(ownTrace);
        X11Connection ownDisplay;
        X11Windows own(ownLoop, ownDisplay);
        const auto found = own.FindWindow(u"LarkspinWin", u"");
        if (!found) _exit(1);
        own.SendMessage(*found, {74, 1, 2, title});
        own.SendMessage(*found, {0x8002, 0, -9, {}});
        own.IsWindow(*found);  // an answer from the server: what went before it has arrived
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(WEXITSTATUS(status), 0);
    ASSERT_TRUE(real::WaitFor([&] {
        loop.DoEvents();
        return received.size() >= 2;
    }));
    EXPECT_EQ(received[0].message, 74);
    EXPECT_EQ(received[0].data, title);
    EXPECT_EQ(received[1].message, 0x8002);
    EXPECT_EQ(received[1].second, -9);
}

TEST_F(X11WindowsTest, RubbishInTheMailbox_IsDropped) {
    const auto window = Make(u"w");
    const xcb_atom_t mail = display.Atom("_KESTRUM_MAIL");
    const std::string rubbish(100, '\xFF');
    xcb_change_property(display.Get(), XCB_PROP_MODE_APPEND, static_cast<xcb_window_t>(window->Handle()), mail, mail, 8,
                        static_cast<std::uint32_t>(rubbish.size()), rubbish.data());
    display.Flush();
    EXPECT_TRUE(windows.IsWindow(window->Handle()));
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    EXPECT_TRUE(received.empty());
}

TEST_F(X11WindowsTest, WindowOfProcess_IsTheOneItHasShown) {
    EXPECT_EQ(windows.WindowOfProcess(4711), std::nullopt);
    const xcb_window_t window = MapWindow(4711);
    EXPECT_EQ(windows.WindowOfProcess(4711), window);
    windows.BringToFront(window);
    windows.InvalidateAndUpdate(window);
    windows.BringToFront(0x123456);
    EXPECT_TRUE(display.IsOpen());
}

TEST(X11WindowsWithoutDisplay, MessageWindowsWorkInTheProcess) {
    const real::ScopedEnv none("DISPLAY", "");
    RecordingTrace trace;
    EventLoop loop(trace);
    X11Connection display;
    X11Windows windows(loop, display);
    int calls = 0;
    const auto window = windows.CreateMessageWindow(u"w", [&](const WindowMessage&) { return ++calls; });
    const auto other = windows.CreateMessageWindow(u"v", [](const WindowMessage&) { return 0; });
    EXPECT_NE(window->Handle(), 0u);
    EXPECT_NE(window->Handle(), other->Handle());
    EXPECT_EQ(windows.SendMessage(window->Handle(), {1, 0, 0, {}}), 1);
    EXPECT_TRUE(windows.SetProperty(window->Handle(), u"p", 3));
    EXPECT_EQ(windows.FindWindow(u"x", u""), std::nullopt);
    EXPECT_EQ(windows.WindowText(window->Handle(), 10), u"");
    windows.BringToFront(window->Handle());
    windows.InvalidateAndUpdate(window->Handle());
}

}  // namespace
}  // namespace kestrum::platform
