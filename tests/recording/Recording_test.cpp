// Whole recordings from the press of Record to the package, as the user and the next program see them.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

TEST_F(Lecture, ShowFromSlideThree_IsRecordedWithItsSlidesInOrder) {
    world.app.Select({3});
    Play().PressRecord().At(5s).GoToSlide(4).At(9s).GoToSlide(5).At(12s).PressEscape().At(20s).Run();
    Texts stored = StoredEntries();
    ASSERT_EQ(stored.size(), 3U);
    EXPECT_EQ(stored[0], "0 Light");
    EXPECT_NE(stored[1].find(" Sound"), std::string::npos);
    EXPECT_NE(stored[2].find(" Thanks"), std::string::npos);
    ExpectAtRest();
    EXPECT_EQ(Boxes(), Texts{});
}

}  // namespace
}  // namespace kestrum
