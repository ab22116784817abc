// Canvas and whiteboard on a real screen: what one sees after drawing with a real pointer, who gets the keys, what lies
// above what.
#include "adapters/qt/QtDrawingBoard.h"

#include <gtest/gtest.h>

#include <QScreen>
#include <filesystem>
#include <optional>

#include "Places.h"
#include "adapters/linux/X11Connection.h"
#include "adapters/qt/Compositor.h"
#include "adapters/qt/InkWindow.h"
#include "adapters/qt/QtPresenter.h"
#include "qt/DemoForms.h"
#include "qt/Screen.h"
#include "real/ChildProcess.h"
#include "real/TestWindow.h"

namespace kestrum::qt {
namespace {

using Sheet = adapters::IDrawingBoard::Sheet;
constexpr std::uint32_t kSlide = 0x204080, kOtherSlide = 0x10A060;
const QColor kInk(255, 0, 0);
const host::Rect kArea{0, 0, Screen::kWidth, Screen::kHeight};

/// The board asks nothing of the show whose slide has changed.
class AnyShow : public host::ISlideShowWindow {
  public:
    std::unique_ptr<host::ISlideShowView> View() override { return nullptr; }
    std::unique_ptr<host::IPresentation> Presentation() override { return nullptr; }
    void Activate() override {}
    float Left() override { return 0; }
    float Top() override { return 0; }
};

/// A program that has the keyboard and writes down the keys that reach it.
class KeyReader {
  public:
    KeyReader() {
        const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE;
        m_window = xcb_generate_id(m_display.Get());
        xcb_create_window(m_display.Get(), XCB_COPY_FROM_PARENT, m_window, m_display.Root(), 600, 600, 50, 50, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        xcb_map_window(m_display.Get(), m_window);
        xcb_set_input_focus(m_display.Get(), XCB_INPUT_FOCUS_PARENT, m_window, XCB_CURRENT_TIME);
        xcb_flush(m_display.Get());
    }
    std::uint32_t Focus() {
        const platform::XReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(m_display.Get(), xcb_get_input_focus(m_display.Get()), nullptr));
        return reply ? reply->focus : 0;
    }
    std::uint32_t Window() const { return m_window; }
    /// Key codes that have come so far.
    const std::vector<int>& Keys() {
        Focus();  // an answer of the server: what it sent before has arrived
        while (const platform::XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_display.Get())}) {
            if ((event->response_type & 0x7F) != XCB_KEY_PRESS) continue;
            m_keys.push_back(reinterpret_cast<const xcb_key_press_event_t&>(*event).detail);
        }
        return m_keys;
    }

  private:
    platform::X11Connection m_display;
    xcb_window_t m_window = 0;
    std::vector<int> m_keys;
};

class QtDrawingBoardTest : public testing::Test {
  protected:
    QtDrawingBoardTest() {
        show.Fill(kSlide);
        show.MovePointer(5, 5);
    }
    ~QtDrawingBoardTest() override { EXPECT_TRUE(trace.lines.empty()); }

    bool PumpUntil(const std::function<bool()>& done) { return Screen::PumpUntil(loop, done); }
    void Act(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "xdotool");
        ASSERT_EQ(real::Run(arguments).code, 0);
    }
    /// A line from left to right with the left button.
    void Line(int fromX, int toX, int y) {
        const auto text = [](int number) { return std::to_string(number); };
        Act({"mousemove", text(fromX), text(y), "mousedown", "1", "mousemove", text((fromX + toX) / 2), text(y),
             "mousemove", text(toX), text(y), "mouseup", "1"});
    }
    static QColor ColourAt(int x, int y) {
        return QGuiApplication::primaryScreen()->grabWindow(0, x, y, 1, 1).toImage().pixelColor(0, 0);
    }
    bool Shows(int x, int y, const QColor& colour) {
        return PumpUntil([&] { return ColourAt(x, y) == colour; });
    }
    /// Without it the show would not paint again what a compositor has lost by starting.
    bool ShowsSlide(int x, int y, std::uint32_t colour) {
        return PumpUntil([&] {
            show.Fill(colour);
            return ColourAt(x, y) == QColor(colour | 0xFF000000);
        });
    }
    static std::optional<InkWindow::Ground> GroundOnScreen() {
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            if (const auto* sheet = dynamic_cast<const InkWindow*>(widget)) return sheet->GroundKind();
        }
        return std::nullopt;
    }
    static void Keep(const char* name) {
        const std::string folder = std::string(places::kInstall) + "/../screenshots";
        std::filesystem::create_directories(folder);
        const QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(0);
        EXPECT_TRUE(picture.save(QString::fromStdString(folder + "/" + name)));
    }
    real::ChildProcess StartCompositor() {
        real::ChildProcess::Options quiet;
        quiet.quiet = true;
        real::ChildProcess compositor({"picom", "--backend", "xrender", "--config", "/dev/null"}, quiet);
        EXPECT_TRUE(PumpUntil([] { return IsComposited(); }));
        return compositor;
    }

    Screen& screen = Screen::Get();
    platform::RecordingTrace trace;
    QtEventLoop loop{trace};
    real::TestWindow show{screen.Display(), 0, 0, Screen::kWidth, Screen::kHeight};
    QtDrawingBoard board{loop};
    AnyShow anyShow;
};

TEST_F(QtDrawingBoardTest, Canvas_WithoutACompositor_ShowsTheInkAndTheShowBelowIt) {
    ASSERT_FALSE(IsComposited());
    board.Open(Sheet::Canvas, kArea);
    EXPECT_TRUE(board.IsOpen(Sheet::Canvas));
    EXPECT_FALSE(board.IsOpen(Sheet::Whiteboard));
    board.SetPen(6, 0x0000FF);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    EXPECT_EQ(ColourAt(200, 230), QColor(kSlide | 0xFF000000));
    show.Fill(kOtherSlide);
    EXPECT_TRUE(Shows(200, 230, QColor(kOtherSlide | 0xFF000000))) << "what moves below the canvas is seen moving";
    EXPECT_EQ(ColourAt(200, 200), kInk);
}

TEST_F(QtDrawingBoardTest, Canvas_WithACompositor_ShowsTheInkAndTheShowBelowIt) {
    const real::ChildProcess compositor = StartCompositor();
    board.Open(Sheet::Canvas, kArea);
    board.SetPen(6, 0x0000FF);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    EXPECT_TRUE(ShowsSlide(200, 230, kSlide));
    EXPECT_TRUE(ShowsSlide(200, 230, kOtherSlide));
    EXPECT_EQ(ColourAt(200, 200), kInk);
    Keep("canvas.png");
}

TEST_F(QtDrawingBoardTest, CompositorThatComesAndGoes_LeavesInkAndShowInSight) {
    board.Open(Sheet::Canvas, kArea);
    board.SetPen(6, 0x0000FF);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    {
        const real::ChildProcess compositor = StartCompositor();
        EXPECT_TRUE(PumpUntil([] { return GroundOnScreen() == InkWindow::Ground::SeeThrough; }));
        Line(100, 300, 300);
        EXPECT_TRUE(Shows(200, 300, kInk));
        EXPECT_TRUE(Shows(200, 200, kInk));
        EXPECT_TRUE(ShowsSlide(200, 250, kSlide));
    }
    EXPECT_TRUE(PumpUntil([] { return GroundOnScreen() == InkWindow::Ground::CutOut; }));
    EXPECT_TRUE(ShowsSlide(200, 250, kOtherSlide));
    EXPECT_TRUE(Shows(200, 200, kInk));
    EXPECT_TRUE(Shows(200, 300, kInk));
}

TEST_F(QtDrawingBoardTest, Whiteboard_IsWhite_AndHidesTheShow) {
    board.Open(Sheet::Whiteboard, kArea);
    EXPECT_TRUE(Shows(200, 230, Qt::white));
    EXPECT_TRUE(Shows(Screen::kWidth - 1, Screen::kHeight - 1, Qt::white));
    board.SetPen(6, 0xFF0000);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, Qt::blue));
    Keep("whiteboard.png");
}

TEST_F(QtDrawingBoardTest, Close_GivesScreenAndPointerBack) {
    board.Open(Sheet::Whiteboard, kArea);
    EXPECT_TRUE(Shows(200, 230, Qt::white));
    board.Close(Sheet::Canvas);
    EXPECT_TRUE(board.IsOpen(Sheet::Whiteboard)) << "the other sheet is not meant";
    board.Close(Sheet::Whiteboard);
    EXPECT_FALSE(board.IsOpen(Sheet::Whiteboard));
    show.Fill(kSlide);
    EXPECT_TRUE(Shows(200, 230, QColor(kSlide | 0xFF000000)));
}

TEST_F(QtDrawingBoardTest, Sheet_CoversTheMonitorThatHoldsMostOfTheCapture) {
    const auto setMonitor = [](std::vector<std::string> words) {
        words.insert(words.begin(), "xrandr");
        EXPECT_EQ(real::Run(words).code, 0);
    };
    setMonitor({"--setmonitor", "Left", "412/110x768/200+0+0", "screen"});
    setMonitor({"--setmonitor", "Right", "612/160x768/200+412+0", "none"});
    EXPECT_TRUE(PumpUntil([] { return QGuiApplication::screens().size() == 2; }));
    board.Open(Sheet::Whiteboard, {400, 100, 800, 400});
    EXPECT_TRUE(Shows(412, 0, Qt::white));
    EXPECT_EQ(ColourAt(411, 200), QColor(kSlide | 0xFF000000));
    board.Close(Sheet::Whiteboard);
    setMonitor({"--delmonitor", "Right"});
    setMonitor({"--delmonitor", "Left"});
    EXPECT_TRUE(PumpUntil([] { return QGuiApplication::screens().size() == 1; }));
}

TEST_F(QtDrawingBoardTest, OneSheetAtATime) {
    board.Open(Sheet::Canvas, kArea);
    board.Open(Sheet::Whiteboard, kArea);
    EXPECT_FALSE(board.IsOpen(Sheet::Canvas));
    EXPECT_TRUE(board.IsOpen(Sheet::Whiteboard));
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    board.Open(Sheet::Whiteboard, kArea);
    EXPECT_EQ(ColourAt(200, 200), kInk) << "opening the open sheet again keeps what is on it";
}

TEST_F(QtDrawingBoardTest, PenChange_ConcernsTheStrokesThatFollow) {
    board.Open(Sheet::Whiteboard, kArea);
    board.SetPen(6, 0x0000FF);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    board.SetPen(20, 0x00FF00);
    Line(100, 300, 300);
    EXPECT_TRUE(Shows(200, 308, QColor(0, 255, 0)));
    EXPECT_EQ(ColourAt(200, 200), kInk);
}

TEST_F(QtDrawingBoardTest, OtherButtons_NeitherDrawNorReachTheShow) {
    board.Open(Sheet::Whiteboard, kArea);
    Act({"mousemove", "100", "200", "mousedown", "3", "mousemove", "300", "200", "mouseup", "3", "click", "4", "click",
         "2"});
    Line(100, 300, 400);
    EXPECT_TRUE(Shows(200, 400, kInk));
    EXPECT_EQ(ColourAt(200, 200), QColor(Qt::white));
}

TEST_F(QtDrawingBoardTest, OtherSlide_ClearsTheCanvas_ButNotTheWhiteboard) {
    board.Open(Sheet::Canvas, kArea);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    host::IApplicationEvents& events = board;
    events.SlideShowNextSlide(anyShow);
    show.Fill(kSlide);
    EXPECT_TRUE(Shows(200, 200, QColor(kSlide | 0xFF000000)));
    EXPECT_TRUE(board.IsOpen(Sheet::Canvas)) << "one goes on drawing on the next slide";
    Line(100, 300, 250);
    EXPECT_TRUE(Shows(200, 250, kInk));
    board.Open(Sheet::Whiteboard, kArea);
    Line(100, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk));
    events.SlideShowNextSlide(anyShow);
    show.Fill(kSlide);
    EXPECT_TRUE(Shows(200, 230, Qt::white));
    EXPECT_EQ(ColourAt(200, 200), kInk);
}

TEST_F(QtDrawingBoardTest, Keyboard_StaysWithTheShow_ButForEscapeWhichClosesTheSheet) {
    KeyReader program;
    for (const Sheet sheet : {Sheet::Canvas, Sheet::Whiteboard}) {
        board.Open(sheet, kArea);
        Line(100, 300, 200);
        EXPECT_TRUE(Shows(200, 200, kInk));
        EXPECT_EQ(program.Focus(), program.Window());
        const std::size_t before = program.Keys().size();
        Act({"key", "Right", "key", "Escape"});
        EXPECT_TRUE(PumpUntil([&] { return !board.IsOpen(sheet); }));
        EXPECT_EQ(program.Keys().size(), before + 1) << "Escape would have ended the show";
    }
    const std::size_t before = program.Keys().size();
    Act({"key", "Escape"});
    EXPECT_EQ(program.Keys().size(), before + 1) << "without a sheet the key is the show's again";
}

TEST_F(QtDrawingBoardTest, HeldEscape_ClosesTheSheet_AndLeavesTheShowNothing) {
    KeyReader program;
    board.Open(Sheet::Canvas, kArea);
    Act({"keydown", "Escape", "sleep", "1.2"});
    for (int i = 0; i < 10; ++i) loop.DoEvents();
    Act({"keyup", "Escape"});
    EXPECT_TRUE(PumpUntil([&] { return !board.IsOpen(Sheet::Canvas); }));
    EXPECT_TRUE(program.Keys().empty());
}

TEST_F(QtDrawingBoardTest, WindowThatAnotherProgramRaises_IsCoveredAgain) {
    board.Open(Sheet::Whiteboard, kArea);
    EXPECT_TRUE(Shows(200, 230, Qt::white));
    real::TestWindow other(screen.Display(), 150, 150, 200, 200);
    other.Fill(kOtherSlide);
    EXPECT_TRUE(Shows(200, 230, Qt::white));
    Line(160, 300, 200);
    EXPECT_TRUE(Shows(200, 200, kInk)) << "the pointer is the board's again too";
}

TEST_F(QtDrawingBoardTest, Notice_StaysAboveTheSheet) {
    QtPresenter presenter(loop);
    ui::Forms forms(presenter, loop);
    DemoContext context{forms};
    auto& notice = forms.Get<DemoNotice>(context);
    notice.Show();
    const FormWindow& window = *presenter.Find(notice);
    const auto isAbove = [&] {
        const QPoint at = window.geometry().topLeft();
        return ColourAt(at.x() + 3, at.y() + 3) != QColor(Qt::white);
    };
    board.Open(Sheet::Whiteboard, kArea);
    EXPECT_TRUE(Shows(2, Screen::kHeight / 2, Qt::white));
    EXPECT_TRUE(PumpUntil(isAbove));
    real::TestWindow other(screen.Display(), 0, 0, Screen::kWidth, Screen::kHeight);
    other.Fill(kOtherSlide);
    EXPECT_TRUE(PumpUntil([&] { return isAbove() && ColourAt(2, Screen::kHeight / 2) == QColor(Qt::white); }));
}

TEST_F(QtDrawingBoardTest, Sheets_AreMarkedAsPartOfTheRecording) {
    for (const Sheet sheet : {Sheet::Canvas, Sheet::Whiteboard}) {
        board.Open(sheet, kArea);
        Line(100, 300, 200);
        EXPECT_TRUE(Shows(200, 200, kInk));
        int sheets = 0;
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            if (!dynamic_cast<const InkWindow*>(widget)) continue;
            ++sheets;
            platform::X11Connection display;
            EXPECT_EQ(display.Numbers(static_cast<xcb_window_t>(widget->winId()), kOwnWindowProperty),
                      std::vector<std::uint32_t>{0});
        }
        EXPECT_EQ(sheets, 1);
    }
}

}  // namespace
}  // namespace kestrum::qt
