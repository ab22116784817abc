// The order of calls that configures, starts and stops the encoder, and what each of its states does.
#include "recording/modEncoder.h"

#include "recording/LectureDesk.h"
#include "recording/modViewer.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

TEST_F(Lecture, StartEncoder_MakesItsCallsInTheirOrder) {
    Set(u"chkRecSystemAudio", u"1");
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    std::vector<String> order;
    for (const String& line : world.transcript.Lines()) {
        for (const char16_t* call :
             {u"ksHook.InstallMessageHook", u"process Kestrum", u"ksLib.ksResetAVDevice", u"ksHook.EnableHotKey",
              u"ksLib.EncoderSetFilename", u"ksLib.SetCaptureArea", u"ksLib.SetCaptureFrameRate", u"recSystemAudio",
              u"ksLib.EnableRecSystemAudio", u"ksLib.EncoderInitDevice", u"ksLib.EncoderQueryDevice",
              u"ksLib.EncoderStart", u"ksHook.UnInstallMessageHook", u"ksLib.EncoderStop"}) {
            if (line.rfind(call, 0) == 0) order.push_back(call);
        }
    }
    EXPECT_EQ(order,
              (std::vector<String>{u"ksHook.InstallMessageHook", u"process Kestrum", u"ksLib.ksResetAVDevice",
                                   u"ksHook.EnableHotKey", u"ksLib.EncoderSetFilename", u"ksLib.SetCaptureArea",
                                   u"ksLib.SetCaptureFrameRate", u"recSystemAudio", u"ksLib.EnableRecSystemAudio",
                                   u"ksLib.EncoderInitDevice", u"ksLib.EncoderQueryDevice", u"ksLib.EncoderStart",
                                   u"ksHook.UnInstallMessageHook", u"ksLib.EncoderStop"}));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.EnableRecSystemAudio -1"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.EncoderStop 1200"));
}

TEST(FrameRate, LevelIsComparedExactly) {
    EXPECT_EQ(modEncoder::FrameRateOf(u"best"), 30);
    EXPECT_EQ(modEncoder::FrameRateOf(u"high"), 20);
    EXPECT_EQ(modEncoder::FrameRateOf(u"medium"), 10);
    EXPECT_EQ(modEncoder::FrameRateOf(u"low"), 4);
    EXPECT_EQ(modEncoder::FrameRateOf(u"Best"), 10);
    EXPECT_EQ(modEncoder::FrameRateOf(u""), 10);
}

TEST_F(Lecture, BusyEncoder_IsAskedFor5100Ms_ThenTheStartFails) {
    world.ksLib.nextStates.assign(52, -1);
    std::int64_t boxAt = 0;
    world.box.AnswerAfter(0, host::BoxAnswer::Ok, [&] { boxAt = world.loop.Elapsed(); });
    Play().PressRecord().At(20s).Run();
    EXPECT_EQ(boxAt, 100 + 300 + 5100);
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderState"), 52);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderSetFilename"));
    ExpectAtRest();
}

TEST_F(Lecture, EncoderThatGetsFreeAtTheLastRead_Starts) {
    world.ksLib.nextStates.assign(51, -1);
    Play().PressRecord().At(10s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
}

TEST_F(Lecture, EmptyPackage_IsDeletedBeforeTheFileIsNamed_AndCountsAsLengthZero) {
    // Opening a fresh project leaves an empty package; the encoder makes its own.
    Set(u"audioBitrate", u"48");
    bool there = true;
    world.processes.programs[u"Kestrum"].effect = [&](const auto&) {
        EXPECT_EQ(world.ksLib.IsEmptyProject(kPackage), 1);
        return std::nullopt;
    };
    world.loop.At(350, [&] { there = world.fs.FileExists(kPackage); });
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_FALSE(there);
    EXPECT_EQ(session.recording.g_MediaLengthAtStart, 0);
    EXPECT_NE(world.ksLib.Get(kPackage)->stored.at("project").find("48"), std::string::npos);
}

TEST_F(Lecture, IndexWithoutMedia_IsEmptied) {
    world.loop.At(350, [] {});
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).PressEscape().At(15s).Run();
    world.fs.Remove(kPackage);
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
}

TEST_F(Lecture, SystemAudio_IsAskedForFromSystem60On_AndSwitchedOffOtherwise) {
    Set(u"chkRecSystemAudio", u"1");
    world.shell.osVersionCode = 52;
    session.Connect();
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.transcript.Only(u"ksLib.EnableRecSystemAudio"),
              std::vector<String>{u"ksLib.EnableRecSystemAudio 0"});
    EXPECT_FALSE(world.transcript.Has(u"recSystemAudio"));
}

TEST_F(Lecture, SystemAudioThatCannotBeCaptured_IsSwitchedOff) {
    Set(u"chkRecSystemAudio", u"1");
    world.recSystemAudio.canRecord = 0;
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.transcript.Only(u"ksLib.EnableRecSystemAudio"),
              std::vector<String>{u"ksLib.EnableRecSystemAudio 0"});
}

TEST_F(Lecture, LayeredWindows_AreCapturedOnlyOnAnOldSystemWithoutAero) {
    Set(u"chkLayeredWin", u"1");
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderTransparent"));
    world.shell.osVersionCode = 61;
    session.Connect();
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_TRUE(world.transcript.Has(u"ksLib.EncoderTransparent"));
}

TEST_F(Lecture, HotKeys_GoByTheirSetting) {
    Set(u"chkEnableHotKey", u"0");
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_TRUE(world.transcript.Has(u"ksHook.EnableHotKey 0"));
}

TEST_F(Lecture, ProjectThatHadAWebcam_GoesOnWithoutOne) {
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    auto package = world.ksLib.Get(kPackage);
    session.project.g_Project.Load(u"");
    std::string project = package->stored["project"];
    auto at = project.find("<size>");  // the webcam's comes before the screen's
    ASSERT_NE(at, std::string::npos) << project;
    project.replace(at, project.find("</size>") - at, "<size>240x180");
    package->stored["project"] = project;
    world.ksLib.Put(kPackage, *package);
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(session.project.g_Project.videoSize, u"");
    EXPECT_EQ(session.project.g_Project.videoBitrate, u"96");
}

TEST_F(Lecture, Snapshot_LiesBesideThePackageWhileItRecords_AndIsGoneAfterwards) {
    Play()
        .PressRecord()
        .At(2s)
        .Do([this] { EXPECT_TRUE(world.fs.FileExists(String(kPackage) + u"._tmp/media.rec.tmp")); })
        .At(5s)
        .PressEscape()
        .At(9s)
        .Run();
    EXPECT_FALSE(world.fs.FolderExists(String(kPackage) + u"._tmp"));
}

TEST_F(Lecture, WriteErrorAtTheEnd_KeepsTheTemporaryFolderForTheRecovery) {
    world.faults.FailCall(u"ksLib.EncoderStop", 1, sim::Once);
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_TRUE(world.box.WasShown(u"write file error!"));
    EXPECT_TRUE(world.fs.FileExists(String(kPackage) + u"._tmp/media.rec.tmp"));
    EXPECT_EQ(Marker(u"recording"), u"1");
    EXPECT_FALSE(session.recording.g_Recording);
}

// --- states --------------------------------------------------------------------------------------------------------

struct FaultText {
    std::int32_t state;
    const char* text;
};

class EncoderFault : public ::testing::TestWithParam<FaultText>, public test::LectureDesk {};

TEST_P(EncoderFault, EndsTheShow_TellsItsText_AndKeepsTheMedia) {
    std::string told;
    world.presenter.Do(u"frmMsgBox", u"read", [&](ui::Form& form) {
        for (ui::Control* control : form.Controls()) {
            if (control->Name() == u"lMsg") told = host::ToUtf8(static_cast<ui::Label*>(control)->Caption());
        }
        EXPECT_FALSE(world.app.ShowIsRunning()) << "the recording ends before its message";
    });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(5s).EncoderReports(GetParam().state).At(20s).Run();
    EXPECT_EQ(told, GetParam().text);
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
    ExpectAtRest();
}

INSTANTIATE_TEST_SUITE_P(
    States, EncoderFault,
    ::testing::Values(FaultText{-1, "The recording engine stopped unexpectedly. What was recorded so far is kept."},
                      FaultText{10, "The recording has reached the largest size of a project and was ended."},
                      FaultText{4, "WAVE buffer overlow!"}, FaultText{5, "VIDEO buffer overlow!"},
                      FaultText{6, "AUDIO buffer overlow!"}, FaultText{7, "CURSOR buffer overlow!"},
                      FaultText{8, "SCREEN buffer overlow!"}, FaultText{9, "MEMORY allocation error!"},
                      FaultText{11, "Get cursor icon error!"},
                      FaultText{12, "Kestrum does not have support for changing screen resolution"},
                      FaultText{13, "there is not enough free disk space! (free disk space < 100MB)"}));

TEST_F(Lecture, LargestSize_EndsTheRecordingWithTheMediaIntact) {
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(5s).EncoderReports(10).At(20s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
    ExpectAtRest();
}

TEST_F(Lecture, UnknownState_EndsTheRecordingWithoutAMessage) {
    Play().PressRecord().At(5s).EncoderReports(99).At(20s).Run();
    // The notice, two status lines and the red light, shown and closed.
    EXPECT_EQ(world.presenter.Transcript().size(), 8U);
    ExpectAtRest();
}

TEST_F(Lecture, RunningStates_ChangeNothing) {
    for (int state : {1, 2}) {
        Play()
            .PressRecord()
            .At(5s)
            .EncoderReports(state)
            .At(15s)
            .Do([this] {
                EXPECT_TRUE(world.app.ShowIsRunning());
                world.ksLib.lastingState = 0;
            })
            .PressEscape()
            .At(20s)
            .Run();
    }
    ExpectAtRest();
}

TEST_F(Lecture, FileError_ShowsItsMessageWhileTheShowStillRuns) {
    bool running = false;
    world.presenter.Do(u"frmMsgBox", u"look", [&](ui::Form&) { running = world.app.ShowIsRunning(); });
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(5s).EncoderReports(3).At(20s).Run();
    EXPECT_TRUE(running);
    EXPECT_FALSE(world.app.ShowIsRunning());
}

// --- low volume ----------------------------------------------------------------------------------------------------

TEST_F(Lecture, SilentMicrophone_BringsUpTheWarningOnce_AndTheEndTakesItDown) {
    Set(u"chkLowVolDetect", u"1");
    bool shown = false;
    Play()
        .PressRecord()
        .At(2s)
        .Do([this] { EXPECT_EQ(world.loop.TimerCount(u"frmViewer.tmrLowVolTest"), 1); })
        .At(10s)
        .Do([this] { EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmVolMsg")); })
        .At(12s)
        .Do([&] { shown = session.c.forms.IsFormLoaded(u"frmVolMsg"); })
        .At(30s)
        .PressEscape()
        .At(40s)
        .Run();
    EXPECT_TRUE(shown);
    ExpectAtRest();
}

TEST_F(Lecture, WarningThatWasClosed_DoesNotComeAgainInThisRecording) {
    Set(u"chkLowVolDetect", u"1");
    Play()
        .PressRecord()
        .At(13s)
        .Do([this] { EXPECT_TRUE(session.c.forms.Find(u"frmVolMsg")->Click(u"cmdOK")); })
        .At(40s)
        .Do([this] {
            EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmVolMsg"));
            EXPECT_EQ(world.loop.TimerCount(u"frmViewer.tmrLowVolTest"), 0);
        })
        .PressEscape()
        .At(50s)
        .Run();
}

TEST_F(Lecture, MicrophoneThatIsHeard_EndsTheDetection) {
    Set(u"chkLowVolDetect", u"1");
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { world.ksLib.SendLevel(6); })
        .At(6s)
        .Do([this] {
            EXPECT_EQ(session.devices.g_AudioLevel, 6);
            world.ksLib.SendLevel(0);
        })
        .At(30s)
        .Do([this] { EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmVolMsg")); })
        .PressEscape()
        .At(40s)
        .Run();
}

TEST_F(Lecture, DetectionSwitchedOff_NeverWarns) {
    Play()
        .PressRecord()
        .At(30s)
        .Do([this] { EXPECT_EQ(world.loop.TimerCount(u"frmViewer.tmrLowVolTest"), 0); })
        .PressEscape()
        .At(40s)
        .Run();
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmVolMsg"));
}

}  // namespace
}  // namespace kestrum
