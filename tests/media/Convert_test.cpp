// The conversion of a recording to a movie, on real files.
#include <algorithm>

#include "ConvertFixture.h"
#include "Places.h"
#include "media/convert/KeyFrameTimes.h"
#include "media/package/Error.h"

namespace kestrum::media {
namespace {

using Strings = std::vector<std::string>;
using Times = std::vector<std::int64_t>;

std::string VideoHash(const std::string& movie) {
    return real::Run({"ffmpeg", "-v", "error", "-i", movie, "-map", "0:v:0", "-f", "md5", "-"}).output;
}

TEST_F(ConvertTest, Convert_WhenNothingChanges_CopiesPicturesAndSound) {
    const auto package = MakeRecording("lecture.ktr", {});
    ASSERT_EQ(ConvertToMp4(Request(package), {}), ConvertOutcome::kFinished);
    EXPECT_EQ(VideoHash(File("media.mp4")), VideoHash(package));
    EXPECT_EQ(EncodedHash(File("media.mp4"), "0:a:0"), EncodedHash(package, "0:a:0"));
    EXPECT_EQ(EncodedHash(File("media.mp4"), "0:v:0"), EncodedHash(package, "0:v:0"));
}

TEST_F(ConvertTest, Convert_WhenFinished_LeavesTheMovieOnly) {
    const auto package = MakeRecording("lecture.ktr", {});
    ConvertToMp4(Request(package), {});
    EXPECT_EQ(Files(), (Strings{"lecture.ktr", "media.mp4"}));
}

TEST_F(ConvertTest, Convert_PutsTheTablesInFrontOfTheMedia) {
    ConvertToMp4(Request(MakeRecording("lecture.ktr", {})), {});
    const std::string bytes = real::ReadText(File("media.mp4"));
    ASSERT_NE(bytes.find("moov"), std::string::npos);
    EXPECT_LT(bytes.find("moov"), bytes.find("mdat"));
}

TEST_F(ConvertTest, Convert_WithAnotherSize_ScalesThePicturesAndKeepsTheLength) {
    auto request = Request(MakeRecording("lecture.ktr", {}));
    request.width = 240;
    request.height = 180;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    EXPECT_EQ(Probe(request.output, {"-select_streams", "v:0", "-show_entries", "stream=codec_name,width,height"}),
              (Strings{"h264", "240", "180"}));
    EXPECT_NEAR(DurationOf(request.output), 6.0, 0.1);
}

TEST_F(ConvertTest, Convert_WithABitrate_StaysNearIt) {
    auto request = Request(MakeRecording("lecture.ktr", {.size = "640x480"}));
    request.videoKbps = 300;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    const auto bits = Probe(request.output, {"-select_streams", "v:0", "-show_entries", "stream=bit_rate"});
    ASSERT_EQ(bits.size(), 1u);
    EXPECT_LT(std::atoi(bits[0].c_str()), 600000) << "the encoder may use twice the rate at most";
    const auto plain = Probe(request.package, {"-show_entries", "format=bit_rate"});
    EXPECT_GT(std::atoi(plain[0].c_str()), 700000) << "the recording must need more, or this test shows nothing";
}

TEST_F(ConvertTest, Convert_WhenAnEntryLiesBetweenKeyFrames_MakesOneThere) {
    auto request = Request(MakeRecording("lecture.ktr", {}));
    request.entries = {{0, "one"}, {1300, "two"}, {4000, "three"}};
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    EXPECT_EQ(KeyFrameTimes(request.output), (Times{0, 1300000, 2000000, 4000000}));
}

TEST_F(ConvertTest, Convert_WhenThePictureStandsStillAtAnEntry_RepeatsItThereAsAKeyFrame) {
    auto request = Request(MakeRecording("lecture.ktr", {.still = true}));
    request.entries = {{0, "one"}, {777, "two"}, {5901, "three"}};
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    const auto times = KeyFrameTimes(request.output);
    for (const std::int64_t wanted : {0, 777000, 5901000})
        EXPECT_TRUE(std::find(times.begin(), times.end(), wanted) != times.end()) << wanted;
}

TEST_F(ConvertTest, Convert_KeepsTheKeyFramesOfTheRecordingWhenItEncodes) {
    auto request = Request(MakeRecording("lecture.ktr", {}));
    request.width = 160;
    request.height = 120;
    ConvertToMp4(request, {});
    EXPECT_EQ(KeyFrameTimes(request.output), (Times{0, 2000000, 4000000}));
}

TEST_F(ConvertTest, Convert_WithSoundThatIsNotAac_EncodesIt) {
    const auto package = MakeRecording("lecture.ktr", {.audioCodec = "flac"});
    ASSERT_EQ(ConvertToMp4(Request(package), {}), ConvertOutcome::kFinished);
    EXPECT_EQ(Probe(File("media.mp4"), {"-select_streams", "a:0", "-show_entries", "stream=codec_name,sample_rate"}),
              (Strings{"aac", "48000"}));
    EXPECT_EQ(VideoHash(File("media.mp4")), VideoHash(package));
}

TEST_F(ConvertTest, Convert_WithoutSound_MakesASilentMovie) {
    const auto package = MakeRecording("lecture.ktr", {.withAudio = false});
    ASSERT_EQ(ConvertToMp4(Request(package), {}), ConvertOutcome::kFinished);
    EXPECT_EQ(Probe(File("media.mp4"), {"-show_entries", "stream=codec_type"}), Strings{"video"});
}

TEST_F(ConvertTest, Convert_StillPictures_LastAsLongAsTheRecording) {
    const auto package = MakeRecording("lecture.ktr", {.withAudio = false, .still = true});
    ConvertToMp4(Request(package), {});
    EXPECT_NEAR(DurationOf(File("media.mp4")), DurationOf(package), 0.05);
}

TEST_F(ConvertTest, Convert_OfASinglePicture_HasOneForTheCover) {
    const auto package = MakeRecording("lecture.ktr", {.length = "1.5", .still = true});
    ASSERT_EQ(ConvertToMp4(Request(package), {}), ConvertOutcome::kFinished);
    real::Run({"ffmpeg", "-v", "error", "-i", File("media.mp4"), "-ss", "0.1", "-vframes", "1", "-f", "image2",
               File("cover.jpg")});
    EXPECT_TRUE(std::filesystem::exists(File("cover.jpg")));
    EXPECT_NEAR(DurationOf(File("media.mp4")), DurationOf(package), 0.05);
}

/// The command by which the cover of a publication is taken.
bool CoverCanBeTaken(const std::string& movie, const std::string& cover) {
    real::Run({"ffmpeg", "-v", "error", "-y", "-i", movie, "-ss", "0.1", "-vframes", "1", "-f", "image2", cover});
    return std::filesystem::exists(cover);
}

TEST_F(ConvertTest, Convert_WithAnotherSize_GivesTheFirstStillSlideForTheCover) {
    auto request = Request(MakeRecording("lecture.ktr", {.still = true}));
    request.width = 240;
    request.height = 180;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    ASSERT_TRUE(CoverCanBeTaken(request.output, File("cover.png")));
    real::Run({"ffmpeg", "-v", "error", "-y", "-i", request.output, "-vframes", "1", File("first.png")});
    const auto likeness = real::Run({"ffmpeg", "-v", "error", "-i", File("cover.png"), "-i", File("first.png"),
                                     "-lavfi", "ssim=stats_file=-", "-f", "null", "-"})
                              .output;
    const std::size_t at = likeness.find("All:");
    ASSERT_NE(at, std::string::npos) << likeness;
    EXPECT_GT(std::atof(likeness.c_str() + at + 4), 0.98);
}

TEST_F(ConvertTest, Convert_WritesTheEntriesAsChapters) {
    auto request = Request(MakeRecording("lecture.ktr", {}));
    request.entries = {{0, "Start"}, {2000, "关键帧是什么?"}, {3000, "....indented"}};
    ConvertToMp4(request, {});
    EXPECT_EQ(Probe(request.output, {"-show_entries", "chapter=start_time:chapter_tags=title"}),
              (Strings{"0.000000", "Start", "2.000000", "关键帧是什么?", "3.000000", ".indented"}));
}

TEST_F(ConvertTest, Convert_WithoutGivenEntries_TakesThePackagesChapters) {
    const auto plain = MakeRecording("plain.ktr", {});
    real::WriteText(File("meta"), ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=700\nEND=6000\ntitle=Second\n");
    const auto package = File("lecture.ktr");
    ASSERT_EQ(real::Run({"ffmpeg", "-v", "error", "-i", plain, "-i", File("meta"), "-map_chapters", "1", "-c", "copy",
                         "-f", "matroska", package})
                  .code,
              0);
    auto request = Request(package);
    request.entriesGiven = false;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    EXPECT_EQ(KeyFrameTimes(request.output), (Times{0, 700000, 2000000, 4000000}));
}

TEST_F(ConvertTest, Convert_WhenStopped_LeavesNothing) {
    const auto request = Request(MakeRecording("lecture.ktr", {}));
    int asked = 0;
    EXPECT_EQ(ConvertToMp4(request, {nullptr, [&] { return ++asked > 20; }}), ConvertOutcome::kStopped);
    EXPECT_EQ(Files(), Strings{"lecture.ktr"});
}

TEST_F(ConvertTest, Convert_WhenTheMovieGetsTooLarge_EndsWithThatAndLeavesNothing) {
    auto request = Request(MakeRecording("lecture.ktr", {}));
    request.sizeLimit = 40000;
    EXPECT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kSizeLimit);
    EXPECT_EQ(Files(), Strings{"lecture.ktr"});
}

TEST_F(ConvertTest, Convert_OntoAFullDisk_SaysSoAndLeavesNothing) {
    for (const int width : {0, 240}) {
        auto request = Request(MakeRecording("lecture.ktr", {}));
        request.width = width;
        request.height = width * 3 / 4;
        // The file under way is a device that has no room.
        std::filesystem::create_symlink("/dev/full", File("media.mp4.part"));
        try {
            ConvertToMp4(request, {});
            FAIL() << "a full disk took a movie";
        } catch (const Error& error) {
            EXPECT_EQ(error.kind, ErrorKind::kDiskFull) << error.what();
        }
        EXPECT_EQ(Files(), Strings{"lecture.ktr"});
    }
}

TEST_F(ConvertTest, Convert_TellsAscendingPositionsUpToTheLength) {
    Times positions;
    ConvertToMp4(Request(MakeRecording("lecture.ktr", {})),
                 {[&](std::int64_t position) { positions.push_back(position); }, nullptr});
    ASSERT_FALSE(positions.empty());
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
    EXPECT_GE(positions.back(), 5900);
    EXPECT_LE(positions.back(), 6100);
}

TEST_F(ConvertTest, Convert_OverAnOlderMovie_ReplacesItOnlyWhenWhole) {
    auto request = Request(MakeRecording("lecture.ktr", {}));
    real::WriteText(request.output, "older");
    request.sizeLimit = 40000;
    ConvertToMp4(request, {});
    EXPECT_EQ(real::ReadText(request.output), "older");
    request.sizeLimit = 0;
    ConvertToMp4(request, {});
    EXPECT_NEAR(DurationOf(request.output), 6.0, 0.1);
}

TEST_F(ConvertTest, Convert_OfAFileThatIsNoRecording_FailsWithASentence) {
    real::WriteText(File("lecture.ktr"), "no media at all");
    try {
        ConvertToMp4(Request(File("lecture.ktr")), {});
        FAIL() << "a text file was converted";
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find("lecture.ktr"), std::string::npos);
    }
    EXPECT_EQ(Files(), Strings{"lecture.ktr"});
}

TEST_F(ConvertTest, Convert_InAFolderWithBlanksAndChinese_Works) {
    std::filesystem::create_directory(File("课件 week 1"));
    auto request = Request(MakeRecording("课件 week 1/关键帧 a:b.ktr", {}));
    request.output = File("课件 week 1/media.mp4");
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    EXPECT_NEAR(DurationOf(request.output), 6.0, 0.1);
}

TEST_F(ConvertTest, Convert_OfAGapInTheSound_KeepsWhatFollowsInStep) {
    // Sound from 0 to 2 s and from 4 s on, as two recordings with a pause between them leave it.
    const auto package = File("lecture.ktr");
    ASSERT_EQ(real::Run({"ffmpeg",
                         "-v",
                         "error",
                         "-f",
                         "lavfi",
                         "-i",
                         "testsrc2=size=320x240:rate=10:duration=6",
                         "-f",
                         "lavfi",
                         "-i",
                         "sine=duration=6",
                         "-af",
                         "aselect='lt(t,2)+gte(t,4)'",
                         "-c:v",
                         "libx264",
                         "-bf",
                         "0",
                         "-pix_fmt",
                         "yuv420p",
                         "-c:a",
                         "flac",
                         "-f",
                         "matroska",
                         package})
                  .code,
              0);
    ASSERT_EQ(ConvertToMp4(Request(package), {}), ConvertOutcome::kFinished);
    const auto ends = Probe(File("media.mp4"), {"-select_streams", "a:0", "-show_entries", "stream=duration"});
    ASSERT_EQ(ends.size(), 1u);
    EXPECT_NEAR(std::atof(ends[0].c_str()), 6.0, 0.1);
}

/// Flash and beep at 3 s, as a recorder with sound of this kind leaves them.
class ConvertSyncTest : public ConvertTest, public testing::WithParamInterface<const char*> {
  protected:
    std::string MakeFlashAndBeep(const std::string& audioCodec) const {
        const auto package = File("lecture.ktr");
        EXPECT_EQ(real::Run({"ffmpeg",
                             "-v",
                             "error",
                             "-f",
                             "lavfi",
                             "-i",
                             "color=black:size=320x240:rate=25:duration=3",
                             "-f",
                             "lavfi",
                             "-i",
                             "color=white:size=320x240:rate=25:duration=2",
                             "-f",
                             "lavfi",
                             "-i",
                             "sine=frequency=1000:duration=5:sample_rate=48000",
                             "-filter_complex",
                             "[0][1]concat[v];[2]volume=enable='lt(t,3)':volume=0[a]",
                             "-map",
                             "[v]",
                             "-map",
                             "[a]",
                             "-c:v",
                             "libx264",
                             "-bf",
                             "0",
                             "-pix_fmt",
                             "yuv420p",
                             "-c:a",
                             audioCodec,
                             "-f",
                             "matroska",
                             package})
                      .code,
                  0);
        return package;
    }

    /// The time behind the first `key` of a filter's metadata.
    static double FirstTime(const std::vector<std::string>& arguments, const std::string& key) {
        const std::string output = real::Run(arguments).output;
        const std::size_t at = output.find(key + "=");
        return at == std::string::npos ? -1 : std::atof(output.c_str() + at + key.size() + 1);
    }

    static double FlashAt(const std::string& movie) {
        return FirstTime({"ffmpeg", "-v", "error", "-i", movie, "-vf", "blackdetect=d=0.5,metadata=print:file=-", "-an",
                          "-f", "null", "-"},
                         "lavfi.black_end");
    }

    static double BeepAt(const std::string& movie) {
        return FirstTime({"ffmpeg", "-v", "error", "-i", movie, "-af",
                          "silencedetect=noise=-40dB:d=0.5,ametadata=print:file=-", "-vn", "-f", "null", "-"},
                         "lavfi.silence_end");
    }

    static void ExpectInStep(const std::string& movie) {
        ASSERT_NEAR(FlashAt(movie), 3.0, 0.1);
        EXPECT_NEAR(BeepAt(movie), FlashAt(movie), 0.04);
    }
};

TEST_P(ConvertSyncTest, Convert_KeepsFlashAndBeepTogether) {
    auto request = Request(MakeFlashAndBeep(GetParam()));
    ExpectInStep(request.package);
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    ExpectInStep(request.output);
}

TEST_P(ConvertSyncTest, Convert_WithAnotherSize_KeepsFlashAndBeepTogether) {
    auto request = Request(MakeFlashAndBeep(GetParam()));
    request.width = 240;
    request.height = 180;
    ASSERT_EQ(ConvertToMp4(request, {}), ConvertOutcome::kFinished);
    ExpectInStep(request.output);
}

INSTANTIATE_TEST_SUITE_P(Sound, ConvertSyncTest, testing::Values("aac", "flac"));

TEST(KeyFrameText, WritesSecondsWithSixDecimals) {
    EXPECT_EQ(KeyFrameText({0, 1300000, 61000007}), "0.000000\n1.300000\n61.000007\n");
}

TEST_F(ConvertTest, MpFourGetKeyFrame_WritesOneTimeALine) {
    ConvertToMp4(Request(MakeRecording("lecture.ktr", {})), {});
    const auto list = File("key frame.txt");
    ASSERT_EQ(real::Run({std::string(places::kInstall) + "/mp4GetKeyFrame", File("media.mp4"), list}).code, 0);
    EXPECT_EQ(real::ReadText(list), "0.000000\n2.000000\n4.000000\n");
}

TEST_F(ConvertTest, MpFourGetKeyFrame_OfAFileThatIsNoMovie_WritesNothing) {
    real::WriteText(File("media.mp4"), "nothing");
    EXPECT_NE(real::Run({std::string(places::kInstall) + "/mp4GetKeyFrame", File("media.mp4"), File("list")}).code, 0);
    EXPECT_EQ(Files(), Strings{"media.mp4"});
}

}  // namespace
}  // namespace kestrum::media
