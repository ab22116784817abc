// The conversion library over a worker process: the contract of start, status and stop. The worker is a script that
// says what a test wants it to say.
#include "adapters/media/MediaOptimize.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "adapters/sim/World.h"
#include "real/ChildProcess.h"

namespace kestrum::adapters {
namespace {

constexpr char16_t kPackage[] = u"/talks/week 1 课件.ktr";

class MediaOptimizeTest : public testing::Test {
  protected:
    MediaOptimizeTest() { PutPackage(1366, 768); }

    void PutPackage(std::int32_t width, std::int32_t height) {
        m_package.lengthMs = 10000;
        m_package.width = width;
        m_package.height = height;
        m_world.ksLib.Put(kPackage, m_package);
    }

    /// The worker runs these lines of a shell; its arguments, one a line, are in the file "arguments".
    void WorkerRuns(const std::string& lines) {
        const std::string path = m_folder / "worker";
        real::WriteText(path, "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + (m_folder / "arguments.new") + "'\nmv '" +
                                  (m_folder / "arguments.new") + "' '" + (m_folder / "arguments") + "'\n" + lines);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    std::int32_t Start() {
        std::int32_t mode = 2;
        return m_optimize.ks2mp4(kPackage, host::FromUtf8(m_folder.Path().string()), u"/out folder", u"/program",
                                 m_width, m_height, mode, 1, 32, 0);
    }

    std::int32_t StatusAtTheEnd() {
        EXPECT_TRUE(real::WaitFor([this] { return m_optimize.getKs2mp4Status() < 0; }));
        return m_optimize.getKs2mp4Status();
    }

    /// The worker's arguments as one text with "|" between.
    std::string Arguments() {
        EXPECT_TRUE(real::WaitFor([this] { return std::filesystem::exists(m_folder / "arguments"); }));
        std::string text = real::ReadText(m_folder / "arguments");
        for (char& letter : text)
            if (letter == '\n') letter = '|';
        return text;
    }

    real::TempFolder m_folder;
    sim::World m_world;
    sim::Package m_package;
    MediaOptimize m_optimize{host::FromUtf8(m_folder / "worker"), m_world.ksLib};
    std::int32_t m_width = 1364;
    std::int32_t m_height = 768;
};

TEST_F(MediaOptimizeTest, Status_FollowsThePositionsUntilTheJobIsFinished) {
    WorkerRuns("echo pos 1234; read go; echo pos 5678; read go; echo end finished");
    ASSERT_NE(Start(), 0);
    EXPECT_TRUE(real::WaitFor([this] { return m_optimize.getKs2mp4Status() == 1234; }));
    m_optimize.stopKs2mp4();  // any line lets the script go on
    EXPECT_TRUE(real::WaitFor([this] { return m_optimize.getKs2mp4Status() == 5678; }));
    m_optimize.stopKs2mp4();
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFinished);
}

TEST_F(MediaOptimizeTest, Start_ReturnsWhileTheJobRuns) {
    WorkerRuns("read stop; echo end stopped; exit 3");
    ASSERT_NE(Start(), 0);
    EXPECT_GE(m_optimize.getKs2mp4Status(), 0);
    m_optimize.stopKs2mp4();
    EXPECT_LT(StatusAtTheEnd(), 0);
}

TEST_F(MediaOptimizeTest, Stop_SendsTheWorkerTheLineStop) {
    WorkerRuns("read word; echo \"$word\" > '" + (m_folder / "heard") + "'; echo end stopped");
    Start();
    m_optimize.stopKs2mp4();
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFailed);
    EXPECT_EQ(real::ReadText(m_folder / "heard"), "stop\n");
}

TEST_F(MediaOptimizeTest, Stop_MayBeRepeatedAndComeTooLate) {
    m_optimize.stopKs2mp4();
    WorkerRuns("echo end finished");
    Start();
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFinished);
    m_optimize.stopKs2mp4();
    m_optimize.stopKs2mp4();
    EXPECT_EQ(m_optimize.getKs2mp4Status(), host::job_status::kFinished);
}

TEST_F(MediaOptimizeTest, TheWordsOfTheEnd_AreTheStatuses) {
    for (const auto& [word, status] :
         std::vector<std::pair<std::string, std::int32_t>>{{"finished", host::job_status::kFinished},
                                                           {"failed", host::job_status::kFailed},
                                                           {"memory", host::job_status::kOutOfMemory},
                                                           {"size", host::job_status::kSizeLimit},
                                                           {"stopped", host::job_status::kFailed}}) {
        WorkerRuns("echo end " + word);
        Start();
        EXPECT_EQ(StatusAtTheEnd(), status) << word;
    }
}

TEST_F(MediaOptimizeTest, AWorkerThatDies_HasFailed) {
    WorkerRuns("echo pos 100; kill -9 $$");
    Start();
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFailed);
}

TEST_F(MediaOptimizeTest, AMissingWorker_IsNotStarted) {
    EXPECT_EQ(Start(), 0);
    EXPECT_EQ(m_optimize.getKs2mp4Status(), host::job_status::kFailed);
}

TEST_F(MediaOptimizeTest, AnotherStart_EndsTheJobBefore) {
    WorkerRuns("read word; echo ended > '" + (m_folder / "first") + "'; echo end stopped");
    Start();
    Arguments();
    WorkerRuns("echo end finished");
    Start();
    EXPECT_TRUE(std::filesystem::exists(m_folder / "first"));
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFinished);
}

TEST_F(MediaOptimizeTest, Arguments_NamePackageAndMovieWhole) {
    WorkerRuns("echo end finished");
    Start();
    EXPECT_EQ(Arguments().rfind("convert-mp4|/talks/week 1 课件.ktr|/out folder/media.mp4|", 0), 0u);
}

TEST_F(MediaOptimizeTest, ASizeThatIsThePackagesRoundedDown_MeansThePackagesOwn) {
    WorkerRuns("echo end finished");
    Start();
    EXPECT_NE(Arguments().find("|--size|1366x768|"), std::string::npos);
    EXPECT_EQ(m_width, 1366);
    EXPECT_EQ(m_height, 768);
}

TEST_F(MediaOptimizeTest, NoSize_MeansThePackagesOwn) {
    WorkerRuns("echo end finished");
    m_width = m_height = 0;
    Start();
    EXPECT_EQ(m_width, 1366);
    EXPECT_EQ(m_height, 768);
}

TEST_F(MediaOptimizeTest, AnotherSize_IsPassedOn) {
    WorkerRuns("echo end finished");
    m_width = 640;
    m_height = 360;
    Start();
    EXPECT_NE(Arguments().find("|--size|640x360|"), std::string::npos);
    EXPECT_EQ(m_width, 640);
}

TEST_F(MediaOptimizeTest, BitrateAndWebcamArea_OutliveAJob) {
    m_optimize.SetCustomBitrate(900);
    m_optimize.SetVideoAreaInMp4(160, 120, 600, 1200);
    for (int job = 0; job < 2; ++job) {
        std::filesystem::remove(m_folder / "arguments");
        WorkerRuns("echo end finished");
        Start();
        const std::string arguments = Arguments();
        EXPECT_NE(arguments.find("|--bitrate|900|"), std::string::npos);
        EXPECT_NE(arguments.find("|--camera|160x120,600,1200|"), std::string::npos);
    }
}

TEST_F(MediaOptimizeTest, AnAreaAtTheEdgeOfTheRoundedSize_StaysAtTheEdgeOfThePackagesOwn) {
    m_optimize.SetVideoAreaInMp4(160, 120, 0, 1364 - 160);
    for (int job = 0; job < 2; ++job) {
        std::filesystem::remove(m_folder / "arguments");
        WorkerRuns("echo end finished");
        m_width = 1364;
        Start();
        EXPECT_NE(Arguments().find("|--camera|160x120,0,1206|"), std::string::npos);
    }
}

TEST_F(MediaOptimizeTest, AnOddSize_IsMadeEvenForTheMovieAndThePage) {
    WorkerRuns("echo end finished");
    m_width = 641;
    m_height = 363;
    Start();
    EXPECT_NE(Arguments().find("|--size|640x362|"), std::string::npos);
    EXPECT_EQ(m_width, 640);
    EXPECT_EQ(m_height, 362);
}

TEST_F(MediaOptimizeTest, TheDefaultBitrateAndNoArea_AreNotPassed) {
    WorkerRuns("echo end finished");
    m_optimize.SetCustomBitrate(0);
    m_optimize.SetVideoAreaInMp4(0, 0, 0, 0);
    Start();
    const std::string arguments = Arguments();
    EXPECT_EQ(arguments.find("--bitrate"), std::string::npos);
    EXPECT_EQ(arguments.find("--camera"), std::string::npos);
    EXPECT_NE(arguments.find("|--limit|1932735283|"), std::string::npos);
}

TEST_F(MediaOptimizeTest, TheOpenProjectsIndex_GoesAlong) {
    real::WriteText(
        m_folder / "project.ksp",
        "<kestrum><project><index duration=\"00:10\"><item><title>Tab\there \\ 关键</title><recdate>d</recdate>"
        "<pos>0</pos></item><item><title>Link</title><recdate>e</recdate><pos>-1</pos><url>http://x</url>"
        "</item></index></project></kestrum>");
    WorkerRuns("echo end finished");
    Start();
    const std::string arguments = Arguments();
    const std::size_t at = arguments.find("--index|");
    ASSERT_NE(at, std::string::npos);
    const std::string file = arguments.substr(at + 8, arguments.find('|', at + 8) - at - 8);
    EXPECT_EQ(real::ReadText(file), "0\td\tTab\\there \\\\ 关键\t\n-1\te\tLink\thttp://x\n");
}

TEST_F(MediaOptimizeTest, WithoutAProject_TheWorkerTakesThePackagesChapters) {
    WorkerRuns("echo end finished");
    Start();
    EXPECT_EQ(Arguments().find("--index"), std::string::npos);
}

TEST_F(MediaOptimizeTest, GetVideoMinDim_TellsWhetherThereIsAWebcamTrack) {
    std::int32_t width = 0;
    std::int32_t height = 0;
    EXPECT_EQ(m_optimize.GetVideoMinDim(kPackage, width, height), 0);
    m_package.videoAttribute = 2;
    PutPackage(1366, 768);
    EXPECT_EQ(m_optimize.GetVideoMinDim(kPackage, width, height), 1);
}

}  // namespace
}  // namespace kestrum::adapters
