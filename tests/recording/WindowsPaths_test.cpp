// Whole recordings on a desk whose paths are written as on Windows.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

struct WindowsLecture : ::testing::Test, test::LectureDesk {
    explicit WindowsLecture(const String& deck = u"C:\\Users\\Anna\\My talks\\lecture.pptx")
        : LectureDesk(sim::PathStyle::Windows, deck) {}
    ~WindowsLecture() override {
        if (HasFailure()) std::cerr << Story();
    }
};

TEST_F(WindowsLecture, ARecording_LiesBesideItsPresentation_AndLeavesNothingElse) {
    const String package = u"C:\\Users\\Anna\\My talks\\lecture.ktr";
    Play().PressRecord().At(5s).GoToSlide(2).At(12s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(package), (Texts{"0 Welcome", "4550 Waves"}));
    EXPECT_FALSE(world.ksLib.Get(package)->torn);
    EXPECT_EQ(world.fs.ListFolder(u"C:\\Users\\Anna\\My talks"),
              (std::vector<String>{u"lecture.ktr", u"lecture.pptx"}));
    EXPECT_EQ(world.fs.ListFolder(world.places.temp), std::vector<String>{});
    EXPECT_EQ(Boxes(), Texts{});
    ExpectAtRest();
}

TEST_F(WindowsLecture, ThePackageIsRegistered_ByTheProgramFileOfThePlatform) {
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    const auto runs = world.processes.Runs(u"Kestrum");
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(runs[0].arguments, (std::vector<String>{u"-regpath", u"C:\\Users\\Anna\\My talks\\lecture.ktr"}));
}

struct LectureBelowTheDrive : WindowsLecture {
    LectureBelowTheDrive() : WindowsLecture(u"D:\\lecture.pptx") {}
};

TEST_F(LectureBelowTheDrive, ARecording_IsWholeToo) {
    Play().PressRecord().At(5s).GoToSlide(2).At(12s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(u"D:\\lecture.ktr"), (Texts{"0 Welcome", "4550 Waves"}));
    EXPECT_EQ(world.fs.ListFolder(u"D:\\"), (std::vector<String>{u"lecture.ktr", u"lecture.pptx"}));
    ExpectAtRest();
}

struct LectureOnAShare : WindowsLecture {
    LectureOnAShare() : WindowsLecture(u"\\\\server\\talks\\lecture.pptx") {}
};

TEST_F(LectureOnAShare, ARecording_IsWholeToo) {
    world.fs.AddDrive(u"\\\\server\\talks", host::DriveType::Fixed, 1LL << 40);
    Play().PressRecord().At(5s).GoToSlide(2).At(12s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(u"\\\\server\\talks\\lecture.ktr"), (Texts{"0 Welcome", "4550 Waves"}));
    ExpectAtRest();
}

}  // namespace
}  // namespace kestrum
