// Titles for a recorder in another process, which is one here: found by its window's class, else by its title.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "adapters/linux/X11Windows.h"
#include "adapters/sim/World.h"
#include "addin/Session.h"
#include "linux/Desk.h"
#include "recording/modViewer.h"

namespace kestrum::platform {
namespace {

/// Another process with a window of this name, that writes what it is sent into a file: a line for each message, its
/// number and its bytes as numbers.
class OtherRecorder {
  public:
    OtherRecorder(const String& name, const std::string& file, int messages) : m_file(file) {
        m_process = fork();
        if (m_process == 0) Serve(name, messages);
        real::WaitFor([this] { return std::filesystem::exists(m_file + ".ready"); });
    }
    OtherRecorder(const OtherRecorder&) = delete;
    OtherRecorder& operator=(const OtherRecorder&) = delete;
    ~OtherRecorder() {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    std::string Received() const {
        real::WaitFor([this] { return std::filesystem::exists(m_file); });
        return real::ReadText(m_file);
    }

  private:
    [[noreturn]] void Serve(const String& name, int messages) {
        RecordingTrace trace;
        EventLoop loop(trace);
        X11Connection display;
        X11Windows windows(loop, display);
        std::string lines;
        int count = 0;
        const auto window = windows.CreateMessageWindow(name, [&](const host::WindowMessage& message) {
            lines += std::to_string(message.message) + ":";
            for (const char byte : message.data) lines += " " + std::to_string(static_cast<unsigned char>(byte));
            lines += "\n";
            return ++count;
        });
        windows.IsWindow(window->Handle() + 1);  // an answer of the server: the window is there
        real::WriteText(m_file + ".ready", "");
        loop.RunUntil([&] { return count >= messages; });
        real::WriteText(m_file + ".part", lines);
        std::filesystem::rename(m_file + ".part", m_file);
        _exit(0);
    }

    std::string m_file;
    pid_t m_process = -1;
};

class OtherRecorderTest : public DeskTest {
  protected:
    real::TempFolder folder;
    X11Connection display;
    X11Windows windows{loop, display};
    sim::World world;
    host::Host host = world.HostWith({.windows = &windows});
    Session session{host};
};

TEST_F(OtherRecorderTest, Titles_ArriveAsCopyData_OneByteACharacterInHalfOfTheBytes) {
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), std::nullopt);
    const OtherRecorder other(u"LarkspinWin", folder / "received", 4);
    const auto window = modViewer::FindRecorderWindow(session.c);
    ASSERT_TRUE(window);
    modViewer::SendSlideTitle(session.c, *window, u"Li");
    modViewer::SendSlideTitle(session.c, *window, u"é课");
    modViewer::SendSlideTitle(session.c, *window, u"");
    modViewer::SendSlideTitle(session.c, *window, u"** after a");
    EXPECT_EQ(other.Received(),
              "74: 76 105 0 0\n"
              "74: 233 63 0 0\n"
              "74:\n"
              "74: 42 42 32 97 102 116 101 114 32 97 0 0 0 0 0 0 0 0 0 0\n");
}

TEST_F(OtherRecorderTest, Window_IsFoundByItsTitle_AndByItsClassBeforeThat) {
    const xcb_window_t titled = xcb_generate_id(display.Get());
    const std::string title = "LarkspinWin";
    xcb_create_window(display.Get(), XCB_COPY_FROM_PARENT, titled, display.Root(), 0, 0, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(display.Get(), XCB_PROP_MODE_REPLACE, titled, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(title.size()), title.data());
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), titled);
    const OtherRecorder other(u"LarkspinWin", folder / "received", 1);
    const auto window = modViewer::FindRecorderWindow(session.c);
    ASSERT_TRUE(window);
    EXPECT_NE(*window, titled);
    modViewer::SendSlideTitle(session.c, *window, u"a");
    EXPECT_EQ(other.Received(), "74: 97 0\n");
}

}  // namespace
}  // namespace kestrum::platform
