// The conversion library over the real worker.
#include <gtest/gtest.h>

#include <filesystem>

#include "Places.h"
#include "adapters/media/MediaOptimize.h"
#include "adapters/sim/World.h"
#include "real/ChildProcess.h"

namespace kestrum::adapters {
namespace {

constexpr char16_t kNoFolder[] = u"/";

class RealConversion : public testing::Test {
  protected:
    RealConversion() {
        std::filesystem::create_directory(m_folder / "课件 week 1");
        m_package = m_folder / "课件 week 1/lecture.ktr";
    }

    void Record(int seconds) {
        const std::string duration = std::to_string(seconds);
        ASSERT_EQ(real::Run({"ffmpeg",
                             "-v",
                             "error",
                             "-f",
                             "lavfi",
                             "-i",
                             "testsrc2=size=640x360:rate=10:duration=" + duration,
                             "-f",
                             "lavfi",
                             "-i",
                             "sine=duration=" + duration,
                             "-c:v",
                             "libx264",
                             "-preset",
                             "ultrafast",
                             "-bf",
                             "0",
                             "-pix_fmt",
                             "yuv420p",
                             "-c:a",
                             "flac",
                             "-f",
                             "matroska",
                             m_package})
                      .code,
                  0);
    }

    std::int32_t Start(std::int32_t width, std::int32_t height) {
        std::int32_t mode = 2;
        return m_optimize.ks2mp4(host::FromUtf8(m_package), kNoFolder, Folder(), kNoFolder, width, height, mode, 1, 32,
                                 0);
    }

    String Folder() const { return host::FromUtf8(m_folder / "课件 week 1"); }

    std::size_t CountFiles() const {
        std::filesystem::directory_iterator files(m_folder / "课件 week 1");
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    std::int32_t StatusAtTheEnd() {
        EXPECT_TRUE(real::WaitFor([this] { return m_optimize.getKs2mp4Status() < 0; }, 300));
        return m_optimize.getKs2mp4Status();
    }

    real::TempFolder m_folder;
    std::string m_package;
    sim::World m_world;
    MediaOptimize m_optimize{host::FromUtf8(std::string(places::kInstall) + "/ksmedia"), m_world.ksLib};
};

TEST_F(RealConversion, AJob_EndsWithTheMovie) {
    Record(4);
    ASSERT_NE(Start(320, 180), 0);
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFinished);
    const auto probe = real::Run({"ffprobe", "-v", "error", "-select_streams", "v:0", "-show_entries",
                                  "stream=width,height", "-of", "csv=p=0", m_folder / "课件 week 1/media.mp4"});
    EXPECT_EQ(probe.output, "320,180\n");
}

TEST_F(RealConversion, AStoppedJob_LeavesNothing) {
    Record(300);
    ASSERT_NE(Start(1920, 1080), 0);
    ASSERT_TRUE(real::WaitFor([this] { return m_optimize.getKs2mp4Status() > 0; }));
    EXPECT_GT(CountFiles(), 1u) << "the movie is under way";
    m_optimize.stopKs2mp4();
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFailed);
    EXPECT_EQ(CountFiles(), 1u);
}

TEST_F(RealConversion, AJobWhoseOwnerGoes_EndsAndLeavesNothing) {
    Record(300);
    {
        MediaOptimize owner(host::FromUtf8(std::string(places::kInstall) + "/ksmedia"), m_world.ksLib);
        std::int32_t width = 1920, height = 1080, mode = 2;
        ASSERT_NE(
            owner.ks2mp4(host::FromUtf8(m_package), kNoFolder, Folder(), kNoFolder, width, height, mode, 1, 32, 0), 0);
        ASSERT_TRUE(real::WaitFor([&] { return owner.getKs2mp4Status() > 0; }));
    }
    EXPECT_EQ(CountFiles(), 1u);
}

TEST_F(RealConversion, APackageThatIsNone_Fails) {
    real::WriteText(m_package, "nothing of ours");
    ASSERT_NE(Start(320, 180), 0);
    EXPECT_EQ(StatusAtTheEnd(), host::job_status::kFailed);
    EXPECT_EQ(CountFiles(), 1u);
}

}  // namespace
}  // namespace kestrum::adapters
