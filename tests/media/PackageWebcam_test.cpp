// The webcam's track of a package, beside the pictures of the screen.
#include <gtest/gtest.h>

#include <cstdlib>

#include "PackageSamples.h"
#include "media/package/Package.h"

namespace kestrum::media {
namespace {

using namespace test;

class PackageWebcamTest : public ::testing::Test {
  protected:
    /// The short lecture with a webcam of that size, whose pictures come 30 ms after the screen's.
    void RecordWithWebcam(const std::string& size) const {
        const PictureTrack camera = MakePictures("testsrc2=size=" + size + ":rate=10", 4);
        Lecture lecture = ShortLecture();
        lecture.tracks.webcam = camera.config;
        const auto writer = PackageWriter::Open(m_path);
        auto next = camera.samples.begin();
        Record(*writer, lecture, [&](std::int64_t ms) {
            for (; next != camera.samples.end() && writer->StartMs() + next->ms + 30 <= ms; ++next)
                writer->WriteWebcam(writer->StartMs() + next->ms + 30, next->key, next->data);
        });
        writer->Close(0);
    }

    std::string Probe(const std::string& stream, const std::string& entries) const {
        return RunTool({"ffprobe", "-v", "error", "-count_packets", "-select_streams", stream, "-show_entries", entries,
                        "-of", "csv=p=0", m_path})
            .output;
    }

    TempFolder m_folder;
    const std::string m_path = m_folder.File("lecture.ktr");
};

TEST_F(PackageWebcamTest, AWebcamTrack_IsReadByOthersAndKeepsThePackageSound) {
    RecordWithWebcam("320x240");
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(Probe("v:1", "stream=codec_name,width,height"), "h264,320,240\n");
    EXPECT_GE(std::atoi(Probe("v:1", "stream=nb_read_packets").c_str()), 38);
    EXPECT_EQ(Probe("v:0", "stream=nb_read_packets"), "40\n");
}

TEST_F(PackageWebcamTest, TheSizeClass_IsTheWebcams) {
    RecordWithWebcam("320x240");
    EXPECT_EQ(VideoAttribute(m_path), 4);
    const std::string other = m_folder.File("other.ktr");
    RecordFile(other);
    EXPECT_EQ(VideoAttribute(other), 0);
}

TEST_F(PackageWebcamTest, KeyFrames_AreTheScreens) {
    RecordWithWebcam("160x120");
    EXPECT_EQ(KeyFrames(m_path), (std::vector<std::int64_t>{0, 1000, 2000, 3000}));
    EXPECT_EQ(FrameSize(m_path)->width, 160);
}

TEST_F(PackageWebcamTest, AnInterruptedRecording_KeepsTheScreensKeyFrames) {
    const PictureTrack camera = MakePictures("color=red:size=160x120:rate=1", 2);
    {
        const auto writer = PackageWriter::Open(m_path);
        TrackConfigs tracks = ShortLecture().tracks;
        tracks.audio.reset();
        tracks.webcam = camera.config;
        writer->SetTracks(tracks);
        writer->WriteVideo(0, true, FirstOf(ShortLecture(), true));
        // A second later the webcam's key frame begins a cluster, in which no picture of the screen follows.
        writer->WriteWebcam(1500, true, camera.samples.front().data);
        writer->WriteVideo(3000, true, FirstOf(ShortLecture(), true));
        writer->Sync();
    }
    ASSERT_TRUE(Recover(m_path).has_value());
    EXPECT_EQ(KeyFrames(m_path), (std::vector<std::int64_t>{0, 3000}));
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageWebcamTest, ALaterRecording_AppendsToAllTracks) {
    RecordWithWebcam("160x120");
    RecordWithWebcam("160x120");
    EXPECT_EQ(Probe("v:0", "stream=nb_read_packets"), "80\n");
    EXPECT_GE(std::atoi(Probe("v:1", "stream=nb_read_packets").c_str()), 76);
}

TEST_F(PackageWebcamTest, APackageWithoutTheTrack_TakesNoWebcamPicture) {
    const auto writer = PackageWriter::Open(m_path);
    writer->SetTracks(ShortLecture().tracks);
    EXPECT_THROW(writer->WriteWebcam(0, true, Bytes(10)), Error);
}

}  // namespace
}  // namespace kestrum::media
