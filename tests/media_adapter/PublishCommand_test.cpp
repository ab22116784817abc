// `kestrum publish mp4` on real packages: the program as it is installed, its words, its exit codes, its end on Ctrl-C.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "Places.h"
#include "media/PackageSamples.h"
#include "project/ProjectWorld.h"
#include "real/ChildProcess.h"

namespace kestrum::adapters {
namespace {

namespace fs = std::filesystem;

const std::string kProgram = std::string(places::kInstall) + "/kestrum";

class PublishCommandTest : public testing::Test {
  protected:
    PublishCommandTest() {
        for (const char* name : {"home", "tmp", "talks"}) fs::create_directory(m_folder / name);
    }

    std::string Talk(const std::string& name) const { return m_folder / ("talks/" + name); }

    /// A package of 4 s with two entries.
    std::string MakePackage(const std::string& name) const {
        media::test::RecordFile(Talk(name));
        Store(Talk(name), "00:04");
        return Talk(name);
    }

    void Store(const std::string& package, const std::string& duration) const {
        const std::string project = test::ProjectText(test::Item("One", "0") + test::Item("Two", "2000"), duration);
        media::WriteStored(package, {{media::kProjectFileName, media::test::AsBytes(project)}});
    }

    std::vector<std::pair<std::string, std::string>> Surroundings() const {
        return {{"HOME", m_folder / "home"},
                {"XDG_CONFIG_HOME", m_folder / "home/config"},
                {"XDG_DATA_HOME", m_folder / "home/data"},
                {"TMPDIR", m_folder / "tmp"}};
    }

    real::Outcome Publish(const std::vector<std::string>& words) const {
        std::vector<std::string> command = {kProgram, "publish", "mp4"};
        command.insert(command.end(), words.begin(), words.end());
        return real::Run(command, Surroundings());
    }

    static std::string SizeOf(const std::string& movie) {
        return real::Run({"ffprobe", "-v", "error", "-select_streams", "v:0", "-show_entries", "stream=width,height",
                          "-of", "csv=p=0", movie})
            .output;
    }

    real::TempFolder m_folder;
};

TEST_F(PublishCommandTest, SeveralPackages_ArePublishedOneAfterTheOther_InTheSizeThatIsWanted) {
    const std::string one = MakePackage("one.ktr");
    const std::string two = MakePackage("two 课件.ktr");
    const auto run = Publish({one, two, "--size", "320x240", "--bitrate", "400"});
    EXPECT_EQ(run.code, 0) << run.output;
    EXPECT_NE(run.output.find("page: " + one + ".mp4/index.html"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("page: " + two + ".mp4/index.html"), std::string::npos) << run.output;
    EXPECT_EQ(SizeOf(one + ".mp4/media.mp4"), "320,240\n");
    EXPECT_EQ(SizeOf(two + ".mp4/media.mp4"), "320,240\n");
}

TEST_F(PublishCommandTest, Json_IsOneLineForEachPackage_AndNothingElse) {
    const std::string one = MakePackage("one.ktr");
    const auto run = Publish({"--json", one, Talk("missing.ktr")});
    EXPECT_EQ(run.code, 1) << "one was not published";
    const auto read = real::Run({"python3", "-c",
                                 "import json,sys\n"
                                 "for line in sys.argv[1].splitlines():\n"
                                 "  o=json.loads(line); print(o['published'], o.get('page') or o['failure'])\n",
                                 run.output});
    EXPECT_EQ(read.output.rfind("True " + one + ".mp4/index.html\nFalse There is no package", 0), 0u) << run.output;
}

TEST_F(PublishCommandTest, AWebcamThatIsNotThere_IsRefusedInASentenceBeforeTheWork) {
    const std::string one = MakePackage("one.ktr");
    const auto run = Publish({"--json", one, "--webcam", "top-left"});
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("There is no webcam picture in"), std::string::npos) << run.output;
    EXPECT_FALSE(fs::exists(one + ".mp4"));
    EXPECT_EQ(Publish({one, "--webcam", "none"}).code, 0) << "none is what it is";
}

TEST_F(PublishCommandTest, Captions_AreToldAndCarriedAlong) {
    const std::string one = MakePackage("one.ktr");
    EXPECT_NE(Publish({one}).output.find("Captions: none."), std::string::npos);
    real::WriteText(Talk("one.srt"), "1\n00:00:01,000 --> 00:00:02,000\nspoken words\n");
    EXPECT_NE(Publish({one}).output.find("Captions: one.srt."), std::string::npos);
    EXPECT_NE(real::ReadText(one + ".mp4(1)/captions.js").find("spoken words"), std::string::npos);
}

TEST_F(PublishCommandTest, CtrlC_EndsTheConversion_DeletesItsFolder_AndPublishesNothingMore) {
    const std::string slow = Talk("slow.ktr");
    const auto pictures = media::test::MakePictures("testsrc2=size=640x360:rate=30", 20);
    {
        const auto writer = media::PackageWriter::Open(slow);
        media::TrackConfigs tracks;
        tracks.video = pictures.config;
        writer->SetTracks(tracks);
        for (int round = 0; round < 15; ++round)
            for (const auto& sample : pictures.samples)
                writer->WriteVideo(20000 * round + sample.ms, sample.key, sample.data);
        writer->Close(0);
    }
    Store(slow, "05:00");
    const std::string next = MakePackage("next.ktr");
    real::ChildProcess::Options options;
    options.env = Surroundings();
    options.captureOutput = options.quiet = true;
    real::ChildProcess command({kProgram, "publish", "mp4", slow, next, "--size", "1920x1080"}, options);
    ASSERT_TRUE(real::WaitFor([&] { return fs::exists(slow + ".mp4/media.mp4.part"); }));
    command.Signal(SIGINT);
    ASSERT_TRUE(command.WaitForEnd(120));
    EXPECT_EQ(command.ExitCode(), 128 + SIGINT) << command.ReadAll();
    EXPECT_FALSE(fs::exists(slow + ".mp4"));
    EXPECT_FALSE(fs::exists(next + ".mp4"));
    for (const auto& left : fs::recursive_directory_iterator(m_folder / "tmp"))
        EXPECT_FALSE(left.path().filename().string().starts_with("_ksproj_")) << "the work folder goes too";
}

}  // namespace
}  // namespace kestrum::adapters
