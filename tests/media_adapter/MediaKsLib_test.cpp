// The media library's port against the real worker, a real display and a real sound server: what the core sees.
#include "adapters/media/MediaKsLib.h"

#include <signal.h>

#include "adapters/media/MediaRecSystemAudio.h"
#include "media_adapter/MediaKsLibFixture.h"

namespace kestrum::adapters {
namespace {

TEST_F(MediaKsLibTest, Recording_FromStartToStop_LeavesAWholePackageWithTheStoredFiles) {
    EXPECT_EQ(m_lib.EncoderState(), 0);
    Record();
    EXPECT_TRUE(std::filesystem::is_directory(ToUtf8(Package()) + "._tmp"));
    EXPECT_EQ(m_lib.EncoderState(), 1);
    Sleep(300);
    const std::int32_t first = m_lib.AddKeyFrame();
    Sleep(300);
    const std::int32_t second = m_lib.AddKeyFrame();
    EXPECT_GT(first, 0);
    EXPECT_GT(second, first);
    Stop();

    EXPECT_EQ(m_lib.EncoderState(), 0);
    EXPECT_EQ(ListedKeys(), (std::vector<std::int32_t>{0, first, second}));
    EXPECT_GT(m_lib.GetLength(Package()), second);
    std::int32_t width = 0, height = 0;
    EXPECT_NE(m_lib.GetFileHeaderDim(Package(), width, height), 0);
    EXPECT_EQ(width, kWidth);
    EXPECT_EQ(height, kHeight);
    EXPECT_EQ(m_lib.IsEmptyProject(Package()), 0);
    EXPECT_EQ(m_lib.GetFileFormatVersion(Package()), 8 * 256);
    EXPECT_NE(m_lib.verifyKsFile(Package()), 0);
    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(m_lib.LastRecovery(), String());
    EXPECT_EQ(m_lib.GetAudioBitrate(Package()), 32);
    ASSERT_EQ(m_lib.GetExtendDataFromProject(Package(), Targets()), 0);
    EXPECT_EQ(ReadText(Path("out.txt")), "text for the editor");
    EXPECT_FALSE(std::filesystem::exists(Path("out.photo"))) << "no photo was given";
}

TEST_F(MediaKsLibTest, LengthOfAGrowingPackage_LiesBeyondItsLastKeyFrame) {
    Record();
    const std::int32_t key = m_lib.AddKeyFrame();
    EXPECT_TRUE(WaitFor([&] { return m_lib.GetLength(Package()) > key; }));
    EXPECT_EQ(ListedKeys().back(), key);
    Stop();
}

TEST_F(MediaKsLibTest, SecondRecording_AppendsAtTheOldLength) {
    Record();
    Sleep(300);
    Stop();
    const std::int32_t oldLength = m_lib.GetLength(Package());
    Record();
    Sleep(300);
    Stop();
    EXPECT_EQ(ListedKeys(), (std::vector<std::int32_t>{0, oldLength}));
    EXPECT_GE(m_lib.GetLength(Package()), oldLength + 300);
}

TEST_F(MediaKsLibTest, StoredFiles_AreReplacedWhileTheRecordingRuns) {
    Record();
    WriteText(Path("new.txt"), "changed");
    host::StoredFiles sources;
    sources.indexText = FromUtf8(Path("new.txt"));
    EXPECT_EQ(m_lib.SetExtendDataInProject(Package(), sources), 0);
    Stop();
    ASSERT_EQ(m_lib.GetExtendDataFromProject(Package(), Targets()), 0);
    EXPECT_EQ(ReadText(Path("out.txt")), "changed");
}

TEST_F(MediaKsLibTest, KilledWorker_IsAState_AndTheNextWorkerRecoversEveryEntry) {
    Record();
    Sleep(500);
    const std::int32_t second = m_lib.AddKeyFrame();
    ASSERT_TRUE(m_lib.WriteIndexJournal(JournalLine(0, u"First") + JournalLine(second, u"Zweite Folie 第二")));
    // The journal is in the file once its key frame is; the media behind it are flushed every 100 ms.
    Sleep(2000);
    kill(FindChild("ksmedia"), SIGKILL);

    ASSERT_TRUE(WaitFor([&] { return m_lib.EncoderState() == host::encoder_state::kGone; }));
    EXPECT_LT(m_lib.AddKeyFrame(), 0);
    EXPECT_FALSE(m_lib.WriteIndexJournal(u""));
    Stop();
    EXPECT_EQ(m_lib.EncoderState(), host::encoder_state::kFileError) << "the package was not finished";
    EXPECT_EQ(m_lib.IsEmptyProject(Package()), 0);

    EXPECT_NE(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_NE(m_lib.LastRecovery().find(u"2 index entries"), String::npos) << ToUtf8(m_lib.LastRecovery());
    EXPECT_GE(m_lib.GetLength(Package()), second + 1000);
    ASSERT_EQ(m_lib.GetExtendDataFromProject(Package(), Targets()), 0);
    const std::string project = ReadText(Path("out.ksp"));
    EXPECT_NE(project.find("First"), std::string::npos);
    EXPECT_NE(project.find("Zweite Folie 第二"), std::string::npos);
    EXPECT_EQ(ListedKeys(), (std::vector<std::int32_t>{0, second}));
}

TEST_F(MediaKsLibTest, KilledWorker_DoesNotStopTheNextRecording) {
    Record();
    kill(FindChild("ksmedia"), SIGKILL);
    ASSERT_TRUE(WaitFor([&] { return m_lib.EncoderState() == host::encoder_state::kGone; }));
    Stop();
    Record();
    EXPECT_EQ(m_lib.EncoderState(), 1);
    Stop();
    EXPECT_EQ(m_lib.EncoderState(), 0);
}

TEST_F(MediaKsLibTest, HungWorker_DoesNotHangTheCaller) {
    Record();
    const pid_t worker = FindChild("ksmedia");
    kill(worker, SIGSTOP);
    EXPECT_LT(m_lib.AddKeyFrame(), 0);
    kill(worker, SIGCONT);
    Sleep(300);
    EXPECT_GT(m_lib.AddKeyFrame(), 0) << "late answers are thrown away, new ones arrive";
    Stop();
    EXPECT_EQ(m_lib.EncoderState(), 0);
}

TEST_F(MediaKsLibTest, FolderThatCannotBeWritten_IsAFileError) {
    Prepare();
    m_lib.EncoderSetFilename(u"/proc/no such folder/lecture.ktr", u"", u"");
    EXPECT_EQ(m_lib.EncoderStart(0), 0);
    EXPECT_EQ(m_lib.EncoderState(), host::encoder_state::kFileError);
    EXPECT_LT(m_lib.AddKeyFrame(), 0);
    Stop();
}

TEST_F(MediaKsLibTest, AreaOffTheScreen_IsAScreenErrorAndMakesNoPackage) {
    Prepare();
    m_lib.EncoderCloseDevice();
    m_lib.SetCaptureArea(2, 0, kWidth + 1, kHeight - 1);
    m_lib.EncoderInitDevice();
    EXPECT_EQ(m_lib.EncoderStart(0), 0);
    EXPECT_EQ(m_lib.EncoderState(), host::encoder_state::kScreenOverflow);
    EXPECT_FALSE(std::filesystem::exists(ToUtf8(Package())));
}

TEST_F(MediaKsLibTest, MissingMicrophone_IsNoUsableDevice) {
    ASSERT_EQ(m_sound.Control({"unload-module", "module-remap-source"}).code, 0);
    String devices = u"untouched";
    EXPECT_NE(m_lib.ksQueryAudioDevice(devices), 1);
    EXPECT_EQ(m_lib.ksSetAudioDevice(u"Microphone"), 0);
    m_lib.EncoderInitDevice();
    EXPECT_EQ(m_lib.EncoderQueryDevice(), 0);
}

TEST_F(MediaKsLibTest, Devices_AreNamedForPeopleAndTwinsAreNumbered) {
    ASSERT_EQ(m_sound
                  .Control({"load-module", "module-remap-source", "master=speaker.monitor", "source_name=twin",
                            "source_properties=device.description=Microphone"})
                  .code,
              0);
    String devices;
    ASSERT_EQ(m_lib.ksQueryAudioDevice(devices), 1);
    EXPECT_EQ(devices, u"Microphone##0_&&_Microphone (2)##0");
    EXPECT_NE(m_lib.ksSetAudioDevice(u"Microphone (2)"), 0);
    EXPECT_EQ(m_lib.ksSetAudioDevice(u"Microphone (3)"), 0);
    MediaRecSystemAudio system(m_worker);
    EXPECT_GT(system.CanRecordSystemAudio(), 0);
}

TEST_F(MediaKsLibTest, Levels_ReachTheCoreFromThePump) {
    PulseServer::WriteTone(Path("tone.wav"), 440, 60);
    const auto tone = m_sound.Play(Path("tone.wav"));
    Record();
    std::int32_t loudest = 0;
    m_lib.SetVolumeMeter([&](std::int32_t level) { loudest = std::max(loudest, level); });
    Sleep(300);
    EXPECT_EQ(loudest, 0) << "nothing is called outside a pump";
    EXPECT_TRUE(WaitFor([&] {
        m_loop.DoEvents();
        return loudest > 40;
    }));
    EXPECT_LE(loudest, 100);
    m_lib.SetVolumeMeter(nullptr);
    m_loop.DoEvents();
    loudest = 0;
    Sleep(300);
    m_loop.DoEvents();
    EXPECT_EQ(loudest, 0);
    Stop();
}

TEST_F(MediaKsLibTest, StoringWithoutAPackage_MakesAnEmptyOne) {
    EXPECT_EQ(m_lib.IsEmptyProject(Package()), 2);
    host::StoredFiles sources;
    sources.projectFile = FromUtf8(Path("project.ksp"));
    sources.photo = FromUtf8(Path("there is no photo"));
    EXPECT_EQ(m_lib.SetExtendDataInProject(Package(), sources), 0);
    EXPECT_EQ(m_lib.IsEmptyProject(Package()), 1);
    EXPECT_EQ(m_lib.GetLength(Package()), 0);
    EXPECT_EQ(m_lib.GetExtendDataFromProject(Package(), Targets()), 0);
    EXPECT_EQ(ReadText(Path("out.ksp")), ReadText(Path("project.ksp")));
}

TEST_F(MediaKsLibTest, WhatIsNoPackage_IsNeverCalledEmptyOrSound) {
    WriteText(ToUtf8(Package()), "not a package at all");
    EXPECT_EQ(m_lib.IsEmptyProject(Package()), 0);
    EXPECT_EQ(m_lib.verifyKsFile(Package()), 0);
    EXPECT_EQ(m_lib.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(m_lib.GetFileFormatVersion(Package()), 0);
    EXPECT_EQ(m_lib.GetExtendDataFromProject(Package(), Targets()), -1);
    EXPECT_EQ(m_lib.GetLength(Package()), 0);
    std::int32_t width = 7, height = 7;
    EXPECT_EQ(m_lib.GetFileHeaderDim(Package(), width, height), 0);
    EXPECT_EQ(width, 7);
    EXPECT_EQ(ReadText(ToUtf8(Package())), "not a package at all");
}

TEST_F(MediaKsLibTest, UniformPicture_IsTold) {
    m_window.Fill(0);
    EXPECT_TRUE(m_lib.IsPictureUniform({0, 0, kWidth, kHeight}));
    m_window.FillArea(0xFFFFFF, 10, 10, 3, 3);
    EXPECT_FALSE(m_lib.IsPictureUniform({0, 0, kWidth, kHeight}));
    EXPECT_FALSE(m_lib.IsPictureUniform({0, 0, 4 * kWidth, kHeight})) << "an area that cannot be read is not uniform";
}

TEST_F(MediaKsLibTest, MissingWorkerProgram_IsAFailureOfEachCallAndNoCrash) {
    WorkerLink nobody("/no/such/program", m_loop);
    MediaKsLib library(nobody);
    EXPECT_EQ(library.EncoderState(), host::encoder_state::kGone);
    EXPECT_EQ(library.ksResetAVDevice(), 0);
    EXPECT_EQ(library.GetLength(Package()), 0);
    EXPECT_EQ(library.IsEmptyProject(Package()), 0) << "nothing may be deleted because nobody could look at it";
    EXPECT_EQ(library.verifyWholeKsFile(Package()), 0);
    EXPECT_EQ(library.SetExtendDataInProject(Package(), {}), -1);
}

}  // namespace
}  // namespace kestrum::adapters
