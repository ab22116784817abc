// Where the lecturer's bar stands.
#include "recording/LecturerPlace.h"

#include "recording/LectureDesk.h"

namespace kestrum::recording {
namespace {

constexpr std::int32_t kWidth = 400, kHeight = 36;

struct PlaceTest : test::Lecture {
    /// The region on the one monitor of 1280 by 720; right and bottom lie one beyond the last pixel.
    std::optional<host::Rect> With(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
        session.display.g_CaptureLeft = left;
        session.display.g_CaptureTop = top;
        session.display.g_CaptureRight = right - 1;
        session.display.g_CaptureBottom = bottom - 1;
        return LecturerPlace(session.c, kWidth, kHeight);
    }
};

TEST_F(PlaceTest, WholeScreenOfTheOnlyMonitor_LeavesNoPlace) {
    EXPECT_FALSE(With(0, 0, 1280, 720));
    EXPECT_FALSE(With(20, 20, 1260, 700)) << "too narrow";
}

TEST_F(PlaceTest, BandsAndSides_AreUsed) {
    EXPECT_EQ(With(0, 52, 1280, 668), (host::Rect{440, 8, 840, 44}));
    EXPECT_EQ(With(0, 0, 1280, 668), (host::Rect{440, 676, 840, 712}));
    EXPECT_EQ(With(416, 0, 1280, 720), (host::Rect{8, 8, 408, 44}));
    EXPECT_EQ(With(0, 0, 864, 720), (host::Rect{872, 8, 1272, 44}));
    EXPECT_FALSE(With(0, 51, 1280, 669)) << "one pixel too low";
}

TEST_F(PlaceTest, AnotherMonitor_ComesFirst_WhereverItStands) {
    world.monitors.AddRight(1024, 768);
    EXPECT_EQ(With(0, 100, 1280, 600), (host::Rect{1280 + 312, 8, 1280 + 712, 44}));
    session.display.g_Monitor = world.monitors.all.back().handle;
    EXPECT_EQ(With(1280, 0, 2304, 768), (host::Rect{440, 8, 840, 44})) << "the one on the left";
}

TEST_F(PlaceTest, MonitorThatIsGone_LeavesNoPlace) {
    session.display.g_Monitor = 4711;
    EXPECT_FALSE(With(0, 100, 1280, 600));
}

}  // namespace
}  // namespace kestrum::recording
