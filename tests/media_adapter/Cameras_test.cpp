// Cameras behind the media library: files that stand for them, and a video device that is preloaded into the worker;
// listed, shown in a window of this program, recorded.
#include <algorithm>
#include <filesystem>

#include "media/capture/Screen.h"
#include "media_adapter/MediaKsLibFixture.h"
#include "real/MediaProbe.h"

namespace kestrum::adapters {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x2040C0, kGrey = 0x808080;

/// What only the environment at the worker's start decides is made before the worker.
class CameraFiles {
  public:
    void PlugInTestPicture(const std::string& name) { WriteText(m_folder / name, ""); }
    /// A movie whose left half is red and whose right half is green.
    void PlugInMovie(const std::string& name, const std::string& size = "320x240") {
        const std::string half = std::to_string(std::stoi(size) / 2);
        Run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=red:size=" + size + ":rate=15", "-vf",
             "drawbox=x=" + half + ":y=0:w=" + half + ":h=ih:color=lime:t=fill", "-t", "1", "-c:v", "libx264",
             m_folder / "unfinished.mp4"});
        fs::rename(m_folder / "unfinished.mp4", m_folder / name);
    }
    void Unplug(const std::string& name) { fs::remove(m_folder / name); }
    std::string Folder() const { return m_folder.Path().string(); }

  private:
    TempFolder m_folder;
};

struct WithCameraFolder {
    CameraFiles cameraFiles;
    ScopedEnv cameraEnv{"KESTRUM_CAMERAS", cameraFiles.Folder()};
};

class CameraDesk : public MediaKsLibTest {
  protected:
    void SetUp() override {
        MediaKsLibTest::SetUp();
        m_lib.SetDeviceNotice([this](const host::DeviceNotice& notice) {
            m_notices.push_back(ToUtf8(notice.device) + (notice.isBack ? " back" : " lost"));
        });
        m_window.Fill(kGrey);
    }
    void TearDown() override { m_lib.SetDeviceNotice(nullptr); }

    String Cameras() {
        String text;
        return m_lib.ksQueryVideoDevice(text) == 1 ? text : u"no cameras";
    }
    std::int32_t Preview(const String& camera, int width = 240, int height = 180) {
        m_lib.ksSetAudioDevice(u"Microphone");
        return m_lib.CheckAVDevice(m_window.Handle(), width, height, camera);
    }
    bool Shows(int x, int y, std::uint32_t colour) {
        const auto shown = media::ProbePicture(m_display.Name(), {x, y, 2, 2}).colour;
        return IsNear(
            {static_cast<int>(shown >> 16 & 0xFF), static_cast<int>(shown >> 8 & 0xFF), static_cast<int>(shown & 0xFF)},
            colour, 40);
    }
    bool WaitUntilShown(int x, int y, std::uint32_t colour) {
        return WaitFor([&] { return Shows(x, y, colour); });
    }
    bool WaitForNotice(const std::string& last) {
        return WaitFor([&] {
            m_loop.DoEvents();
            return !m_notices.empty() && m_notices.back() == last;
        });
    }
    void WantCamera(const std::string& size) {
        std::string project = ReadText(Path("project.ksp"));
        const auto video = project.find("<video>");
        const auto begin = project.find("<size>", video), end = project.find("</size>", video);
        ASSERT_NE(end, std::string::npos) << project;
        project.replace(begin, end - begin, "<size>" + size);
        WriteText(Path("project.ksp"), project);
    }
    void RecordWithCamera(const String& camera) {
        ASSERT_NE(m_lib.ksResetAVDevice(), 0);
        ASSERT_NE(m_lib.ksSetVideoDevice(camera), 0);
        OpenForRecording();
        ASSERT_NE(m_lib.EncoderStart(0), 0);
    }
    /// "width,height" of the package's camera, empty without one.
    std::string TrackSize() const { return ProbeTrack("stream=width,height"); }
    int TrackPictures() const { return static_cast<int>(TrackPositions().size()); }
    std::vector<std::int64_t> TrackPositions() const {
        std::vector<std::int64_t> positions;
        std::istringstream lines(ProbeTrack("packet=pts_time"));
        for (double seconds = 0; lines >> seconds;)
            positions.push_back(static_cast<std::int64_t>(seconds * 1000 + 0.5));
        return positions;
    }
    /// The colour of the camera's last picture, in its left or right half.
    Rgb TrackColour(bool right) const {
        const auto raw = real::Run({"ffmpeg", "-v", "error", "-i", ToUtf8(Package()), "-map", "0:v:1", "-vf",
                                    std::string("crop=2:2:iw*") + (right ? "3/4" : "1/4") + ":ih/2,format=rgb24", "-f",
                                    "rawvideo", "-"})
                             .output;
        if (raw.size() < 12) return {-1, -1, -1};
        const auto* pixel = reinterpret_cast<const unsigned char*>(raw.data()) + raw.size() - 12;
        return {pixel[0], pixel[1], pixel[2]};
    }

    std::vector<std::string> m_notices;

  private:
    std::string ProbeTrack(const std::string& entries) const {
        return real::Run({"ffprobe", "-v", "error", "-select_streams", "v:1", "-show_entries", entries, "-of",
                          "csv=p=0", ToUtf8(Package())})
            .output;
    }
};

// --- Files that stand for cameras ----------------------------------------------------------------------------------

class FileCameras : public WithCameraFolder, public CameraDesk {};

TEST_F(FileCameras, CamerasAreTheFilesOfTheFolder_PluggedInAndPulledOut) {
    EXPECT_EQ(Cameras(), u"no cameras");
    cameraFiles.PlugInTestPicture("Desk camera");
    cameraFiles.PlugInTestPicture("Hall ## camera");
    EXPECT_EQ(Cameras(), u"Desk camera##0_&&_Hall camera##0");
    EXPECT_NE(m_lib.ksSetVideoDevice(u"Hall camera"), 0);
    cameraFiles.Unplug("Desk camera");
    EXPECT_EQ(Cameras(), u"Hall camera##0");
    EXPECT_EQ(m_lib.ksSetVideoDevice(u"Desk camera"), 0);
}

TEST_F(FileCameras, Preview_DrawsTheCameraIntoTheWindow_UntilItIsClosed) {
    cameraFiles.PlugInMovie("Desk camera.mp4");
    EXPECT_EQ(Preview(u"Desk camera"), 3);
    EXPECT_TRUE(WaitUntilShown(60, 90, kRed));
    EXPECT_TRUE(Shows(180, 90, kGreen));
    EXPECT_TRUE(Shows(300, 90, kGrey)) << "nothing beyond the size asked for";
    m_lib.CloseAVDevice();
    m_window.Fill(kGrey);
    Sleep(300);
    EXPECT_TRUE(Shows(60, 90, kGrey));
}

TEST_F(FileCameras, WidePicture_IsShownWholeWithBars) {
    cameraFiles.PlugInMovie("Wide.mp4", "640x180");
    EXPECT_EQ(Preview(u"Wide", 320, 240), 3);
    EXPECT_TRUE(WaitUntilShown(80, 120, kRed));
    EXPECT_TRUE(Shows(240, 120, kGreen));
    EXPECT_TRUE(Shows(80, 20, 0)) << "a black bar";
    m_lib.CloseAVDevice();
}

TEST_F(FileCameras, PulledOutDuringThePreview_ClearsThePicture_AndComesBackWithTheCamera) {
    cameraFiles.PlugInTestPicture("Desk");
    EXPECT_EQ(Preview(u"Desk"), 3);
    ASSERT_TRUE(WaitUntilShown(120, 90, kBlue));
    cameraFiles.Unplug("Desk");
    EXPECT_TRUE(WaitUntilShown(120, 90, 0)) << "no frozen picture";
    cameraFiles.PlugInTestPicture("Desk");
    EXPECT_TRUE(WaitUntilShown(120, 90, kBlue));
    m_lib.CloseAVDevice();
}

TEST_F(FileCameras, WindowThatGoesDuringThePreview_HarmsNothing) {
    cameraFiles.PlugInTestPicture("Desk");
    {
        TestWindow window(m_display.Name(), 0, 0, 240, 180);
        m_lib.ksSetAudioDevice(u"Microphone");
        EXPECT_EQ(m_lib.CheckAVDevice(window.Handle(), 240, 180, u"Desk"), 3);
        ASSERT_TRUE(WaitUntilShown(120, 90, kBlue));
    }
    Sleep(300);
    EXPECT_EQ(m_worker.Generation(), 1);
    EXPECT_EQ(m_lib.CheckAVDevice(m_window.Handle(), 240, 180, u"Desk"), 3);
    EXPECT_TRUE(WaitUntilShown(120, 90, kBlue));
    m_lib.CloseAVDevice();
    EXPECT_EQ(m_worker.Generation(), 1) << "the worker lives";
}

TEST_F(FileCameras, CameraThatFails_IsToldWhileTheSoundIsOpen) {
    cameraFiles.PlugInTestPicture("Desk");
    WriteText(cameraFiles.Folder() + "/Broken.mp4", "no movie");
    EXPECT_EQ(Preview(u"Broken"), 1);
    EXPECT_EQ(Preview(u"Not there"), 1);
    EXPECT_EQ(m_lib.CheckAVDevice(0x7FFFFFFF, 240, 180, u"Desk"), 1) << "no such window";
    EXPECT_EQ(Preview(u""), 3) << "no camera was asked for";
    m_lib.CloseAVDevice();
}

TEST_F(FileCameras, RecordedCamera_IsTheWebcamTrack_InTheProjectsSize) {
    cameraFiles.PlugInMovie("Desk.mp4");
    WantCamera("240x180");
    RecordWithCamera(u"Desk");
    Sleep(3000);
    Stop();
    EXPECT_EQ(m_lib.EncoderState(), 0);
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(TrackSize(), "240,180\n");
    EXPECT_EQ(m_lib.GetVideoAttribute(Package()), 2);
    const auto positions = TrackPositions();
    EXPECT_GE(positions.size(), 20U);
    EXPECT_LE(positions.size(), 60U) << "about 15 a second";
    EXPECT_LE(positions.front(), 500);
    EXPECT_LE(positions.back(), m_lib.GetLength(Package()));
    EXPECT_TRUE(IsNear(TrackColour(false), kRed, 40));
    EXPECT_TRUE(IsNear(TrackColour(true), kGreen, 40));
    EXPECT_EQ(ListedKeys(), std::vector<std::int32_t>{0}) << "key frames are the screen's";
}

TEST_F(FileCameras, ProjectWithoutAVideoSize_RecordsNoCamera) {
    cameraFiles.PlugInTestPicture("Desk");
    WantCamera("");
    RecordWithCamera(u"Desk");
    Sleep(300);
    Stop();
    EXPECT_EQ(TrackSize(), "");
    EXPECT_EQ(m_lib.GetVideoAttribute(Package()), 0);
}

TEST_F(FileCameras, SecondRecording_KeepsTheFirstOnesCameraSize) {
    cameraFiles.PlugInMovie("Desk.mp4");
    WantCamera("160x120");
    RecordWithCamera(u"Desk");
    Sleep(1000);
    Stop();
    const auto first = TrackPictures();
    const std::int32_t oldLength = m_lib.GetLength(Package());
    WantCamera("320x240");
    RecordWithCamera(u"Desk");
    Sleep(1000);
    Stop();
    EXPECT_EQ(TrackSize(), "160,120\n");
    EXPECT_GT(TrackPictures(), first + 5);
    EXPECT_GE(TrackPositions().back(), oldLength);
    EXPECT_TRUE(IsNear(TrackColour(false), kRed, 40)) << "the second recording can be decoded";
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
}

TEST_F(FileCameras, CameraPulledOutInMidRecording_IsTold_CostsNothingElse_AndIsTakenAgain) {
    cameraFiles.PlugInTestPicture("Desk");
    WantCamera("160x120");
    RecordWithCamera(u"Desk");
    Sleep(1000);
    cameraFiles.Unplug("Desk");
    ASSERT_TRUE(WaitForNotice("Desk lost"));
    const std::int32_t whileLost = m_lib.AddKeyFrame();
    EXPECT_GT(whileLost, 0);
    Sleep(1000);
    cameraFiles.PlugInTestPicture("Desk");
    ASSERT_TRUE(WaitForNotice("Desk back"));
    Sleep(1000);
    Stop();
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    const auto positions = TrackPositions();
    EXPECT_GT(positions.back(), whileLost + 1000);
    EXPECT_TRUE(std::none_of(positions.begin(), positions.end(),
                             [&](auto ms) { return ms > whileLost && ms < whileLost + 900; }));
}

TEST_F(FileCameras, CameraThatCannotBeOpened_IsTold_AndTheRecordingGoesOnWithoutIt) {
    cameraFiles.PlugInMovie("Desk.mp4");
    WantCamera("160x120");
    ASSERT_NE(m_lib.ksSetVideoDevice(u"Desk"), 0);
    WriteText(cameraFiles.Folder() + "/Desk.mp4", "no movie any more");
    RecordWithCamera(u"Desk");
    EXPECT_TRUE(WaitForNotice("Desk lost"));
    Sleep(300);
    Stop();
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(TrackSize(), "");
}

TEST_F(FileCameras, CameraForAPackageThatWasBegunWithoutOne_IsToldAndLeftOut) {
    Record();
    Sleep(300);
    Stop();
    cameraFiles.PlugInTestPicture("Desk");
    WantCamera("160x120");
    RecordWithCamera(u"Desk");
    EXPECT_TRUE(WaitForNotice("Desk lost"));
    Stop();
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(TrackSize(), "");
}

// --- A video device ------------------------------------------------------------------------------------------------

enum class Pictures { kPlain, kJpeg };

/// The programs of the test are started with the device; what it does is decided by files of this folder.
struct WithVideoDevice {
    explicit WithVideoDevice(Pictures pictures) : jpeg("FAKE_VIDEO_JPEG", JpegFile(pictures)) {
        if (pictures == Pictures::kJpeg)
            Run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=red:size=320x240", "-vf",
                 "drawbox=x=160:y=0:w=160:h=ih:color=lime:t=fill", "-frames:v", "1", "-q:v", "2", JpegFile(pictures)});
    }
    std::string JpegFile(Pictures pictures) const {
        return pictures == Pictures::kJpeg ? folder / "picture.jpg" : std::string();
    }
    static std::string Library() { return fs::read_symlink("/proc/self/exe").parent_path() / "fake_video_device.so"; }

    TempFolder folder;
    ScopedEnv jpeg;
    ScopedEnv gone{"FAKE_VIDEO_GONE", folder / "gone"};
    ScopedEnv busy{"FAKE_VIDEO_BUSY", folder / "busy"};
    ScopedEnv device{"LD_PRELOAD", Library()};
};

class VideoDevice : public WithVideoDevice, public CameraDesk {
  protected:
    explicit VideoDevice(Pictures pictures = Pictures::kPlain) : WithVideoDevice(pictures) {}
    void ExpectPicture() {
        EXPECT_EQ(Cameras(), u"Fake Camera##0");
        EXPECT_EQ(Preview(u"Fake Camera"), 3);
        EXPECT_TRUE(WaitUntilShown(60, 90, kRed));
        EXPECT_TRUE(Shows(180, 90, kGreen));
        m_lib.CloseAVDevice();
    }
};

TEST_F(VideoDevice, PlainPictures_AreShown) {
    ExpectPicture();
}

TEST_F(VideoDevice, UsedElsewhere_IsAFailureOfTheCameraAlone) {
    WriteText(folder / "busy", "");
    EXPECT_EQ(Preview(u"Fake Camera"), 1);
    fs::remove(folder / "busy");
    ExpectPicture();
}

TEST_F(VideoDevice, PulledOut_IsNoCameraAnyMore) {
    WriteText(folder / "gone", "");
    EXPECT_EQ(Cameras(), u"no cameras");
}

TEST_F(VideoDevice, PulledOutInMidRecording_IsToldAndTakenAgain) {
    WantCamera("320x240");
    RecordWithCamera(u"Fake Camera");
    Sleep(1000);
    WriteText(folder / "gone", "");
    ASSERT_TRUE(WaitForNotice("Fake Camera lost"));
    fs::remove(folder / "gone");
    ASSERT_TRUE(WaitForNotice("Fake Camera back"));
    Sleep(500);
    Stop();
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(TrackSize(), "320,240\n");
    EXPECT_TRUE(IsNear(TrackColour(false), kRed, 40));
    EXPECT_TRUE(IsNear(TrackColour(true), kGreen, 40));
    EXPECT_EQ(m_lib.GetVideoAttribute(Package()), 4);
}

class JpegDevice : public VideoDevice {
  protected:
    JpegDevice() : VideoDevice(Pictures::kJpeg) {}
};

TEST_F(JpegDevice, JpegPictures_AreShown) {
    ExpectPicture();
}

TEST_F(JpegDevice, DamagedPicture_IsLeftOut) {
    EXPECT_EQ(Preview(u"Fake Camera"), 3);
    ASSERT_TRUE(WaitUntilShown(60, 90, kRed));
    const std::string whole = ReadText(folder / "picture.jpg");
    WriteText(folder / "picture.jpg", "torn");
    Sleep(500);
    EXPECT_TRUE(Shows(60, 90, kRed));
    WriteText(folder / "picture.jpg", whole);
    m_window.Fill(kGrey);
    EXPECT_TRUE(WaitUntilShown(60, 90, kRed));
    EXPECT_EQ(m_worker.Generation(), 1);
    m_lib.CloseAVDevice();
}

}  // namespace
}  // namespace kestrum::adapters
