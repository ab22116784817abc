// Conversion of real packages: written by the package writer, in two recordings, with a stored project.
#include "ConvertFixture.h"
#include "PackageSamples.h"
#include "media/convert/KeyFrameTimes.h"

namespace kestrum::media {
namespace {

using Times = std::vector<std::int64_t>;

class ConvertPackageTest : public ConvertTest {
  protected:
    /// The short lecture twice in one package; gives where the second part begins.
    std::int64_t RecordTwice() const {
        const std::int64_t second = test::RecordFile(File("lecture.ktr"));
        test::RecordFile(File("lecture.ktr"));
        return second;
    }

    /// The short lecture again and again in one package, each picture filled up to 20 kB; gives where the last part
    /// begins.
    std::int64_t RecordLarge(int parts) const {
        constexpr std::uint32_t kFiller = 20'000;
        test::Lecture lecture = test::ShortLecture();
        for (test::Sample& sample : lecture.samples) {
            if (!sample.video) continue;
            for (const int shift : {24, 16, 8, 0}) sample.data.push_back((kFiller >> shift) & 0xFF);
            sample.data.push_back(12);  // a unit of filler data
            sample.data.resize(sample.data.size() + kFiller - 2, 0xFF);
            sample.data.push_back(0x80);
        }
        std::int64_t last = 0;
        for (int part = 0; part < parts; ++part) {
            const auto writer = PackageWriter::Open(File("lecture.ktr"));
            last = writer->StartMs();
            test::Record(*writer, lecture);
            writer->Close(0);
        }
        return last;
    }

    static std::int64_t CountPackets(const std::string& file, const std::string& track) {
        const auto lines =
            Probe(file, {"-count_packets", "-select_streams", track, "-show_entries", "stream=nb_read_packets"});
        return lines.empty() ? -1 : std::atoll(lines[0].c_str());
    }
};

TEST_F(ConvertPackageTest, Convert_CopiesEveryPictureAndSoundOfBothParts) {
    RecordTwice();
    ASSERT_EQ(ConvertToMp4(Request(File("lecture.ktr")), {}), ConvertOutcome::kFinished);
    for (const char* track : {"v:0", "a:0"})
        EXPECT_EQ(CountPackets(File("media.mp4"), track), CountPackets(File("lecture.ktr"), track)) << track;
}

TEST_F(ConvertPackageTest, Convert_KeepsTheKeyFramesWhereTheyAre) {
    RecordTwice();
    ConvertToMp4(Request(File("lecture.ktr")), {});
    Times expected;
    for (const std::int64_t pos : KeyFrames(File("lecture.ktr"))) expected.push_back(1000 * pos);
    ASSERT_GE(expected.size(), 8u);
    EXPECT_EQ(KeyFrameTimes(File("media.mp4")), expected);
}

TEST_F(ConvertPackageTest, Convert_LastsAsLongAsThePackage) {
    RecordTwice();
    ConvertToMp4(Request(File("lecture.ktr")), {});
    EXPECT_NEAR(DurationOf(File("media.mp4")), static_cast<double>(LengthMs(File("lecture.ktr"))) / 1000, 0.05);
}

TEST_F(ConvertPackageTest, Convert_WithEntriesOnKeyFramesOfBothParts_StillCopies) {
    const std::int64_t second = RecordTwice();
    auto request = Request(File("lecture.ktr"));
    request.entries = {{0, "One"}, {2000, "Two"}, {second, "Three"}};
    ConvertToMp4(request, {});
    EXPECT_EQ(EncodedHash(File("media.mp4"), "0:v:0"), EncodedHash(File("lecture.ktr"), "0:v:0"));
}

// Of a file that is not small a reader takes only a part when it opens it.
TEST_F(ConvertPackageTest, Convert_WithEntriesFarIntoALongPackage_StillCopies) {
    const std::int64_t last = RecordLarge(40);
    ASSERT_GT(last, 60'000);
    ASSERT_GT(std::filesystem::file_size(File("lecture.ktr")), 20'000'000U);
    auto request = Request(File("lecture.ktr"));
    request.entries = {{0, "One"}, {last, "The last part"}};
    ConvertToMp4(request, {});
    EXPECT_EQ(EncodedHash(File("media.mp4"), "0:v:0"), EncodedHash(File("lecture.ktr"), "0:v:0"));
}

TEST_F(ConvertPackageTest, Convert_WithAnotherSize_KeepsPictureAndSoundTogether) {
    const std::int64_t second = RecordTwice();
    auto request = Request(File("lecture.ktr"));
    request.width = 120;
    request.height = 88;
    request.entries = {{0, "One"}, {second + 1234, "Two"}};
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    const auto starts = Probe(File("media.mp4"), {"-show_entries", "stream=start_time"});
    EXPECT_NEAR(std::atof(starts.at(0).c_str()), 0, 0.001);
    EXPECT_NEAR(std::atof(starts.at(1).c_str()), 0, 0.05);
    const auto times = KeyFrameTimes(File("media.mp4"));
    EXPECT_TRUE(std::find(times.begin(), times.end(), 1000 * (second + 1234)) != times.end());
}

TEST_F(ConvertPackageTest, Convert_TakesTheIndexThatThePackageCarries) {
    test::RecordFile(File("lecture.ktr"));
    WriteStored(File("lecture.ktr"), {{kProjectFileName, test::ProjectFile({0, 2000})}});
    auto request = Request(File("lecture.ktr"));
    request.entriesGiven = false;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    EXPECT_EQ(Probe(File("media.mp4"), {"-show_entries", "chapter=start_time"}),
              (std::vector<std::string>{"0.000000", "2.000000"}));
}

TEST_F(ConvertPackageTest, Convert_OfAPackageWithoutMedia_FailsAndLeavesNothing) {
    WriteStored(File("lecture.ktr"), {{kProjectFileName, test::ProjectFile({})}});
    EXPECT_THROW(ConvertToMp4(Request(File("lecture.ktr")), {}), Error);
    EXPECT_EQ(Files(), std::vector<std::string>{"lecture.ktr"});
}

TEST_F(ConvertPackageTest, Convert_WithPlayers_ThePackageAndItsMovieDecodeAlike) {
    RecordTwice();
    ConvertToMp4(Request(File("lecture.ktr")), {});
    const auto hash = [this](const char* name) {
        return real::Run({"ffmpeg", "-v", "error", "-i", File(name), "-map", "0:v:0", "-vsync", "0", "-f", "md5", "-"})
            .output;
    };
    EXPECT_EQ(hash("media.mp4"), hash("lecture.ktr"));
}

}  // namespace
}  // namespace kestrum::media
