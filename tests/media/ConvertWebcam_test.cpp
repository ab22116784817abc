// The webcam's picture in the movie: where it is drawn, when it changes, and what becomes of the screen under it.
#include <array>
#include <cmath>

#include "ConvertFixture.h"
#include "PackageSamples.h"
#include "media/convert/KeyFrameTimes.h"
#include "media/convert/VideoMix.h"

namespace kestrum::media {
namespace {

using Colour = std::array<int, 3>;
using Times = std::vector<std::int64_t>;

constexpr Colour kWhite{255, 255, 255};
constexpr Colour kRed{255, 0, 0};
constexpr Colour kBlue{0, 0, 255};

class ConvertWebcamTest : public ConvertTest {
  protected:
    /// A white screen of 640x360 that stands still for 6 s (one picture, key frame, each two seconds), and the webcam's
    /// pictures at their times.
    std::string Record(const std::vector<test::PictureTrack>& cameraParts, const Times& partStarts) const {
        const std::string path = File("lecture.ktr");
        const auto screen = test::MakePictures("color=white:size=640x360:rate=10", 1);
        std::vector<test::Sample> samples;
        for (const std::int64_t ms : {0, 2000, 4000}) samples.push_back({true, true, ms, screen.samples.front().data});
        for (std::size_t part = 0; part < cameraParts.size(); ++part)
            for (const test::Sample& sample : cameraParts[part].samples)
                samples.push_back({false, sample.key, partStarts[part] + sample.ms, sample.data});
        std::stable_sort(samples.begin(), samples.end(), [](const auto& a, const auto& b) { return a.ms < b.ms; });
        const auto writer = PackageWriter::Open(path);
        writer->SetTracks({screen.config, std::nullopt, cameraParts.front().config});
        for (const test::Sample& sample : samples)
            sample.video ? writer->WriteVideo(sample.ms, sample.key, sample.data)
                         : writer->WriteWebcam(sample.ms, sample.key, sample.data);
        writer->Close(6000);
        return path;
    }

    /// A webcam that is red for three seconds, then blue.
    std::string RecordRedThenBlue() const {
        return Record({test::MakePictures("color=red:size=320x240:rate=10", 3),
                       test::MakePictures("color=blue:size=320x240:rate=10", 3)},
                      {0, 3000});
    }

    ConvertRequest WithCamera(const std::string& package, const CameraArea& area) const {
        ConvertRequest request = Request(package);
        request.camera = area;
        return request;
    }

    /// The colour of a pixel of the picture that is seen at `ms`.
    Colour At(std::int64_t ms, int x, int y) const {
        const auto raw =
            real::Run({"ffmpeg", "-v", "error", "-i", File("media.mp4"), "-t", std::to_string(ms + 1) + "ms", "-vf",
                       "crop=2:2:" + std::to_string(x) + ":" + std::to_string(y), "-vsync", "passthrough", "-pix_fmt",
                       "rgb24", "-f", "rawvideo", "-"})
                .output;
        if (raw.size() < 12) return {-1, -1, -1};
        Colour colour{};
        for (std::size_t i = 0; i < 3; ++i) colour[i] = static_cast<unsigned char>(raw[raw.size() - 12 + i]);
        return colour;
    }

    void ExpectColour(std::int64_t ms, int x, int y, const Colour& wanted) const {
        const Colour colour = At(ms, x, y);
        int distance = 0;
        for (std::size_t i = 0; i < 3; ++i) distance = std::max(distance, std::abs(colour[i] - wanted[i]));
        // Pure colours come back from 4:2:0 within a few steps; the colours of this test lie 255 apart.
        EXPECT_LT(distance, 30) << "at " << ms << " ms, pixel " << x << "," << y << ": " << colour[0] << " "
                                << colour[1] << " " << colour[2];
    }

    /// Times of the movie's pictures, ms.
    Times PictureTimes() const {
        Times times;
        for (const std::string& line :
             Probe(File("media.mp4"), {"-select_streams", "v:0", "-show_entries", "packet=pts_time"}))
            times.push_back(std::llround(std::atof(line.c_str()) * 1000));
        return times;
    }
};

TEST_F(ConvertWebcamTest, Webcam_IsDrawnAtItsPlaceAndNowhereElse) {
    const auto package = RecordRedThenBlue();
    const CameraArea corners[] = {{160, 120, 0, 480}, {160, 120, 240, 480}, {160, 120, 0, 0}, {160, 120, 240, 0}};
    for (const CameraArea& area : corners) {
        ASSERT_EQ(ConvertToMp4(WithCamera(package, area), {}), ConvertOutcome::kFinished);
        SCOPED_TRACE(std::to_string(area.left) + "," + std::to_string(area.top));
        ExpectColour(1000, area.left + 4, area.top + 4, kRed);
        ExpectColour(1000, area.left + 154, area.top + 114, kRed);
        ExpectColour(1000, 320, 180, kWhite);
        for (const CameraArea& other : corners)
            if (other.left != area.left || other.top != area.top)
                ExpectColour(1000, other.left + 80, other.top + 60, kWhite);
    }
}

TEST_F(ConvertWebcamTest, Webcam_ChangesAtItsOwnTimesWhileTheScreenStands) {
    ASSERT_EQ(ConvertToMp4(WithCamera(RecordRedThenBlue(), {320, 240, 0, 0}), {}), ConvertOutcome::kFinished);
    ExpectColour(2900, 100, 100, kRed);
    ExpectColour(3000, 100, 100, kBlue);
    const auto times = PictureTimes();
    EXPECT_EQ(times.size(), 60u) << "one picture for each change of either track";
    EXPECT_EQ(times.front(), 0);
    EXPECT_EQ(times.back(), 5900);
    EXPECT_NEAR(DurationOf(File("media.mp4")), 6.0, 0.05);
}

TEST_F(ConvertWebcamTest, WithAWebcam_EachEntryAndEachKeyFrameOfTheScreenIsAKeyFrame) {
    auto request = WithCamera(RecordRedThenBlue(), {160, 120, 0, 0});
    request.entries = {{0, "one"}, {1234, "two"}, {2000, "three"}, {5950, "four"}};
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    EXPECT_EQ(KeyFrameTimes(request.output), (Times{0, 1234000, 2000000, 4000000, 5950000}));
}

TEST_F(ConvertWebcamTest, WithAWebcamAndAnotherSize_BothAreScaled) {
    auto request = WithCamera(RecordRedThenBlue(), {80, 60, 120, 240});
    request.width = 320;
    request.height = 180;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    ExpectColour(1000, 244, 124, kRed);
    ExpectColour(1000, 232, 124, kWhite);
}

TEST_F(ConvertWebcamTest, WithoutAnArea_ThePicturesAreCopiedWithoutTheWebcam) {
    const auto package = RecordRedThenBlue();
    ASSERT_EQ(ConvertToMp4(Request(package), {}), ConvertOutcome::kFinished);
    EXPECT_EQ(PictureTimes(), (Times{0, 2000, 4000}));
    ExpectColour(1000, 4, 4, kWhite);
    EXPECT_EQ(Probe(File("media.mp4"), {"-show_entries", "stream=codec_type"}).size(), 1u);
}

TEST_F(ConvertWebcamTest, AWebcamThatWasSwitchedOff_LeavesTheScreenAfterThreeSeconds) {
    ASSERT_EQ(
        ConvertToMp4(
            WithCamera(Record({test::MakePictures("color=red:size=160x120:rate=10", 1)}, {0}), {160, 120, 0, 0}), {}),
        ConvertOutcome::kFinished);
    ExpectColour(3800, 80, 60, kRed);
    ExpectColour(3901, 80, 60, kWhite);
    ExpectColour(5900, 80, 60, kWhite);
}

TEST_F(ConvertWebcamTest, AWebcamThatBeginsLater_CoversNothingBefore) {
    ASSERT_EQ(ConvertToMp4(WithCamera(Record({test::MakePictures("color=blue:size=160x120:rate=10", 2)}, {2500}),
                                      {160, 120, 0, 0}),
                           {}),
              ConvertOutcome::kFinished);
    ExpectColour(2400, 80, 60, kWhite);
    ExpectColour(2500, 80, 60, kBlue);
}

TEST_F(ConvertWebcamTest, AWebcamOfOtherProportions_IsCutAtItsEdgesAndNotStretched) {
    const auto camera =
        test::MakePictures("color=red:size=480x240:rate=10,drawbox=x=80:y=0:w=320:h=240:color=blue:t=fill", 6);
    ASSERT_EQ(ConvertToMp4(WithCamera(Record({camera}, {0}), {160, 120, 0, 0}), {}), ConvertOutcome::kFinished);
    ExpectColour(1000, 6, 60, kBlue);
    ExpectColour(1000, 152, 60, kBlue);
}

TEST_F(ConvertWebcamTest, AnAreaOfALargerMovie_IsMovedIntoThisOne) {
    ASSERT_EQ(ConvertToMp4(WithCamera(RecordRedThenBlue(), {320, 240, 840, 1600}), {}), ConvertOutcome::kFinished);
    ExpectColour(1000, 630, 350, kRed);
    ExpectColour(1000, 310, 110, kWhite);
}

TEST(CameraArea, FitsIntoTheMovieWithEvenSidesAndCorner) {
    const auto fit = [](const CameraArea& area) {
        const CameraArea f = FitInto(area, 640, 360);
        return std::array<int, 4>{f.width, f.height, f.top, f.left};
    };
    EXPECT_EQ(fit({160, 120, 240, 480}), (std::array<int, 4>{160, 120, 240, 480}));
    EXPECT_EQ(fit({161, 121, 239, 479}), (std::array<int, 4>{160, 120, 238, 478}));
    EXPECT_EQ(fit({1000, 1000, 5, 5}), (std::array<int, 4>{640, 360, 0, 0}));
    EXPECT_EQ(fit({160, 120, -20, -1}), (std::array<int, 4>{160, 120, 0, 0}));
    EXPECT_EQ(fit({0, 0, 0, 0}), (std::array<int, 4>{0, 0, 0, 0}));
    EXPECT_EQ(fit({160, 0, 0, 0}), (std::array<int, 4>{0, 0, 0, 0}));
    EXPECT_EQ(fit({-160, 120, 0, 0}), (std::array<int, 4>{0, 0, 0, 0}));
}

}  // namespace
}  // namespace kestrum::media
