// Windows of the product over what is recorded: the picture is the one that the screen would show without them.
#include <gtest/gtest.h>

#include <xcb/composite.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <optional>
#include <thread>

#include "media/capture/Screen.h"
#include "real/Desktop.h"
#include "real/TestWindow.h"
#include "real/XvfbServer.h"

namespace kestrum::media {
namespace {

using namespace kestrum::real;

constexpr int kWidth = 640, kHeight = 480;
constexpr std::uint32_t kRed = 0xC02020, kGreen = 0x20A040, kBlue = 0x2040C0, kOwn = 0xFF00FF;
const std::string kMark = "_KESTRUM_OWN_WINDOW";

/// A window of the product, not on the screen yet.
class OwnWindow : public TestWindow {
  public:
    OwnWindow(const std::string& display, const Area& place, std::uint32_t mark = 1)
        : TestWindow(display, place.x, place.y, place.width, place.height) {
        Hide();
        SetProperty(kMark, mark);
    }
    void Appear() {
        Show();
        Raise();
        Fill(kOwn);
    }
};

/// What the recorder sees of a display.
class Eye {
  public:
    explicit Eye(const std::string& display, const Area& area = {0, 0, kWidth, kHeight})
        : m_screen(display, area), m_picture(area.width, area.height), m_changes(area.width, area.height) {
        m_screen.Fetch(m_picture, m_changes, true);
    }

    /// The colour at a place of the area as the picture has it now.
    std::uint32_t At(int x, int y) {
        m_screen.Pump();
        if (m_screen.HasNews()) {
            m_screen.FetchPointer();
            m_screen.Fetch(m_picture, m_changes, false);
        }
        return m_picture.Line(y)[x] & 0xFFFFFF;
    }
    /// Compares all, as happens now and then.
    void Sweep() { m_screen.Fetch(m_picture, m_changes, true); }
    bool Shows(std::uint32_t colour, int x, int y) {
        return WaitFor([&] { return At(x, y) == colour; });
    }
    bool HasColour(std::uint32_t colour) const {
        return std::any_of(m_picture.pixels.begin(), m_picture.pixels.end(),
                           [colour](std::uint32_t pixel) { return (pixel & 0xFFFFFF) == colour; });
    }

  private:
    Screen m_screen;
    BgraPicture m_picture;
    ChangeMap m_changes;
};

/// A client of the display that asks it to keep the pictures of covered windows, as the program does that shows own
/// windows.
class CoveredWindowsKept {
  public:
    explicit CoveredWindowsKept(const std::string& display) : m_connection(xcb_connect(display.c_str(), nullptr)) {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        std::free(
            xcb_composite_query_version_reply(m_connection, xcb_composite_query_version(m_connection, 0, 4), nullptr));
        xcb_composite_redirect_subwindows(m_connection, root, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    }
    CoveredWindowsKept(const CoveredWindowsKept&) = delete;
    CoveredWindowsKept& operator=(const CoveredWindowsKept&) = delete;
    ~CoveredWindowsKept() { xcb_disconnect(m_connection); }

  private:
    xcb_connection_t* m_connection;
};

bool IsPictureKept(const std::string& display, std::uint32_t window) {
    xcb_connection_t* connection = xcb_connect(display.c_str(), nullptr);
    std::free(xcb_composite_query_version_reply(connection, xcb_composite_query_version(connection, 0, 4), nullptr));
    auto* error = xcb_request_check(
        connection, xcb_composite_name_window_pixmap_checked(connection, window, xcb_generate_id(connection)));
    const bool kept = error == nullptr;
    std::free(error);
    xcb_disconnect(connection);
    return kept;
}

/// With a compositor and without: what holds for the picture holds for both.
class OwnWindows : public ::testing::TestWithParam<bool> {
  protected:
    OwnWindows() {
        if (GetParam()) m_compositor = StartCompositor(Display());
        m_kept.emplace(Display());
        m_slide.MovePointer(4, 4);
        m_slide.Fill(kRed);
    }
    const std::string& Display() const { return m_display.Name(); }

    /// Changes `place` of the slide below and beside an own window at 500,400 of 100x40; `look` comes after each
    /// change.
    void ExpectChangesSeen(const Area& place, const std::function<void(Eye&)>& look) {
        Eye eye(Display());
        OwnWindow own(Display(), {500, 400, 100, 40});
        own.Appear();
        for (const auto colour : {kGreen, kBlue, kRed}) {
            m_slide.FillArea(colour, place.x, place.y, place.width, place.height);
            look(eye);
            EXPECT_TRUE(eye.Shows(colour, 550, 420));
        }
        EXPECT_FALSE(eye.HasColour(kOwn));
    }

    XvfbServer m_display{kWidth, kHeight};
    ChildProcess m_compositor;
    std::optional<CoveredWindowsKept> m_kept;
    TestWindow m_slide{m_display.Name(), 0, 0, kWidth, kHeight};
};

INSTANTIATE_TEST_SUITE_P(Desktop, OwnWindows, ::testing::Bool(),
                         [](const auto& one) { return one.param ? "Compositor" : "Plain"; });

TEST_P(OwnWindows, WindowThatAppears_IsNotInThePicture) {
    Eye eye(Display());
    OwnWindow own(Display(), {500, 400, 100, 40});
    ASSERT_TRUE(eye.Shows(kRed, 550, 420));
    own.Appear();
    m_slide.FillArea(kGreen, 0, 0, 100, 100);
    ASSERT_TRUE(eye.Shows(kGreen, 50, 50)) << "what was drawn later is seen";
    EXPECT_EQ(eye.At(550, 420), kRed);
    eye.Sweep();
    EXPECT_EQ(eye.At(550, 420), kRed);
    EXPECT_FALSE(eye.HasColour(kOwn));
}

TEST_P(OwnWindows, WhatChangesBelow_IsSeenAtOnce) {
    ExpectChangesSeen({490, 390, 120, 60}, [](Eye&) {});
}

// A compositor paints nothing for a change that an opaque window covers whole; then the regular look at all finds it.
TEST_P(OwnWindows, WhatChangesOnlyBelow_IsSeenAtTheNextSweepAtLatest) {
    ExpectChangesSeen({510, 410, 80, 20}, [](Eye& eye) {
        if (GetParam()) eye.Sweep();
    });
}

TEST_P(OwnWindows, WindowThatWasThereBefore_IsNotInTheFirstPicture) {
    OwnWindow own(Display(), {500, 400, 100, 40});
    own.Appear();
    Eye eye(Display());
    EXPECT_EQ(eye.At(550, 420), kRed);
    EXPECT_FALSE(eye.HasColour(kOwn));
}

TEST_P(OwnWindows, WindowThatMoves_LeavesNoTraceAnywhere) {
    Eye eye(Display());
    OwnWindow own(Display(), {500, 400, 100, 40});
    own.Appear();
    std::atomic<bool> done{false};
    std::thread mover([&] {
        for (int i = 0; i < 300; ++i) own.Move((i * 37) % 500, (i * 23) % 400), own.Fill(kOwn);
        done = true;
    });
    int pictures = 0;
    while (!done) {
        eye.Sweep();
        ++pictures;
        if (eye.HasColour(kOwn)) ADD_FAILURE() << "in picture " << pictures, done = true;
    }
    mover.join();
    EXPECT_GT(pictures, 0);
    eye.Sweep();
    EXPECT_EQ(eye.At(320, 240), kRed);
}

TEST_P(OwnWindows, PlaceOfAWindowThatWent_IsReadFromTheScreenAgain) {
    Eye eye(Display());
    OwnWindow own(Display(), {500, 400, 100, 40});
    own.Appear();
    m_slide.Fill(kGreen);
    ASSERT_TRUE(eye.Shows(kGreen, 550, 420));
    m_kept.reset();
    own.Hide();
    m_slide.Fill(kBlue);
    EXPECT_TRUE(eye.Shows(kBlue, 550, 420));
    EXPECT_FALSE(eye.HasColour(kOwn));
    EXPECT_TRUE(WaitFor([&] {
        eye.Sweep();
        return GetParam() || !IsPictureKept(Display(), m_slide.Handle());
    })) << "and nothing is kept any more";
}

TEST_P(OwnWindows, ForeignWindowAboveOurs_IsRecorded) {
    Eye eye(Display());
    OwnWindow own(Display(), {400, 300, 200, 140});
    own.Appear();
    ASSERT_TRUE(eye.Shows(kRed, 410, 310));
    TestWindow menu(Display(), 450, 350, 40, 40);
    menu.Fill(kBlue);
    EXPECT_TRUE(eye.Shows(kBlue, 470, 370));
    EXPECT_EQ(eye.At(410, 310), kRed);
    menu.Move(420, 310);
    menu.Fill(kBlue);
    EXPECT_TRUE(eye.Shows(kBlue, 430, 320));
    EXPECT_TRUE(eye.Shows(kRed, 480, 380));
    menu.Hide();
    m_slide.Fill(kRed);
    EXPECT_TRUE(eye.Shows(kRed, 430, 320));
}

TEST_P(OwnWindows, WindowsBelow_AreSeenInTheirOrder) {
    Eye eye(Display());
    OwnWindow own(Display(), {400, 300, 200, 140});
    own.Appear();
    TestWindow picture(Display(), 350, 250, 150, 150);
    picture.Fill(kGreen);
    own.Raise();
    picture.Fill(kGreen);
    EXPECT_TRUE(eye.Shows(kGreen, 450, 350));
    EXPECT_TRUE(eye.Shows(kRed, 550, 350));
    picture.Resize(220, 150);
    picture.Fill(kGreen);
    EXPECT_TRUE(eye.Shows(kGreen, 550, 350));
    m_slide.Raise();
    own.Raise();
    m_slide.Fill(kBlue);
    EXPECT_TRUE(eye.Shows(kBlue, 450, 350));
    EXPECT_FALSE(eye.HasColour(kOwn));
}

TEST_P(OwnWindows, WindowThatMayBeRecorded_IsRecorded_UntilItSaysOtherwise) {
    Eye eye(Display());
    OwnWindow board(Display(), {200, 200, 100, 100}, 0);
    board.Appear();
    EXPECT_TRUE(eye.Shows(kOwn, 250, 250));
    board.SetProperty(kMark, 1);
    m_slide.Fill(kGreen);
    EXPECT_TRUE(eye.Shows(kGreen, 250, 250));
    board.SetProperty(kMark, 0);
    EXPECT_TRUE(WaitFor([&] {
        eye.Sweep();
        return eye.At(250, 250) == kOwn;
    }));
}

TEST_P(OwnWindows, AreaThatIsNotTheWholeScreen_HasItsOwnPlaces) {
    Eye eye(Display(), {100, 60, 320, 240});
    OwnWindow own(Display(), {90, 50, 60, 60});
    own.Appear();
    m_slide.Fill(kBlue);
    EXPECT_TRUE(eye.Shows(kBlue, 10, 10));
    EXPECT_TRUE(eye.Shows(kBlue, 200, 200));
    m_slide.FillArea(kGreen, 100, 60, 20, 20);
    EXPECT_TRUE(eye.Shows(kGreen, 10, 10));
    EXPECT_FALSE(eye.HasColour(kOwn));
}

TEST_P(OwnWindows, WindowInAFrame_IsLeftOutWithItsFrame) {
    const ChildProcess manager = StartWindowManager(Display());
    Eye eye(Display());
    TestWindow own(Display(), 200, 200, 150, 100, TestWindow::Kind::Managed);
    own.SetProperty(kMark, 1);
    const auto isManaged = [&] {
        return real::Run({"xprop", "-display", Display(), "-id", std::to_string(own.Handle()), "_NET_FRAME_EXTENTS"})
                   .output.find("=") != std::string::npos;
    };
    // A window that appears while the manager looks around for the first time can be missed by it.
    for (int attempt = 0; attempt < 10 && !WaitFor(isManaged, 5); ++attempt) own.Hide(), own.Show();
    ASSERT_TRUE(isManaged());
    own.Fill(kOwn);
    m_slide.Raise();
    m_slide.Fill(kGreen);
    ASSERT_EQ(real::Run({"xdotool", "windowraise", std::to_string(own.Handle())}, {{"DISPLAY", Display()}}).code, 0);
    own.Fill(kOwn);
    m_slide.Fill(kBlue);
    const auto isAllBlue = [&] {
        eye.Sweep();
        return !eye.HasColour(kOwn) && !eye.HasColour(kRed) && eye.At(1, 470) == kBlue && eye.At(275, 250) == kBlue;
    };
    EXPECT_TRUE(WaitFor(isAllBlue));
    int other = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) other += eye.At(x, y) != kBlue;
    }
    EXPECT_EQ(other, 0) << "pixels of the frame";
}

TEST(OwnWindowsPlain, CoveredBeforeTheFirstPicture_IsUnknownUntilItIsDrawnAgain_AndNeverOurs) {
    const XvfbServer display(kWidth, kHeight);
    TestWindow slide(display.Name(), 0, 0, kWidth, kHeight);
    slide.Fill(kRed);
    OwnWindow own(display.Name(), {500, 400, 100, 40});
    own.Appear();
    Eye eye(display.Name());
    EXPECT_EQ(eye.At(10, 10), kRed);
    EXPECT_EQ(eye.At(550, 420), 0U);
    slide.FillArea(kGreen, 490, 390, 60, 60);
    EXPECT_TRUE(eye.Shows(kGreen, 510, 420));
    EXPECT_EQ(eye.At(590, 420), 0U);
    EXPECT_FALSE(eye.HasColour(kOwn));
}

TEST(OwnWindowsPlain, WithoutCoveredPictures_TheLastThatWasSeenStays) {
    const XvfbServer display(kWidth, kHeight, 24, {"-extension", "Composite"});
    TestWindow slide(display.Name(), 0, 0, kWidth, kHeight);
    slide.Fill(kRed);
    Eye eye(display.Name());
    OwnWindow own(display.Name(), {500, 400, 100, 40});
    own.Appear();
    slide.Fill(kGreen);
    EXPECT_TRUE(eye.Shows(kGreen, 10, 10));
    EXPECT_EQ(eye.At(550, 420), kRed);
    EXPECT_FALSE(eye.HasColour(kOwn));
    own.Hide();
    slide.Fill(kGreen);
    EXPECT_TRUE(eye.Shows(kGreen, 550, 420));
}

TEST(OwnWindowsPlain, WindowBesideTheArea_CostsNothing) {
    const XvfbServer display(kWidth, kHeight);
    TestWindow slide(display.Name(), 0, 0, kWidth, kHeight);
    Eye eye(display.Name(), {0, 0, 320, 240});
    OwnWindow own(display.Name(), {320, 0, 100, 240});
    own.Appear();
    slide.Fill(kRed);
    EXPECT_TRUE(eye.Shows(kRed, 310, 10));
    EXPECT_FALSE(IsPictureKept(display.Name(), slide.Handle()));
    own.Move(310, 0);
    slide.Fill(kGreen);
    EXPECT_TRUE(eye.Shows(kGreen, 300, 10));
    EXPECT_TRUE(IsPictureKept(display.Name(), slide.Handle()));
}

}  // namespace
}  // namespace kestrum::media
