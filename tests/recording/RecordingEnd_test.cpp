// How a recording ends, and how a start fails: whatever happens, the show is over and what was recorded is whole.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

TEST_F(Lecture, LastSlide_EndsTheRecording) {
    world.app.Select({5});
    Play().PressRecord().At(5s).PressRight().At(20s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Thanks"});
    ExpectAtRest();
}

TEST_F(Lecture, ClosingThePresentation_EndsTheRecordingInTheNormalWay) {
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).ClosePresentation(kDeck).At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
    ExpectAtRest();
}

TEST_F(Lecture, ClosingThePresentationOfAnOldHost_EndsTheRecordingToo) {
    world.app.version = u"11.0";
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).ClosePresentation(kDeck).At(20s).Run();
    EXPECT_EQ(StoredEntries().size(), 2U);
    ExpectAtRest();
}

TEST_F(Lecture, StopHotKey_EndsTheRecording) {
    Play().PressRecord().At(5s).HookMessage(0x800C).At(20s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    EXPECT_EQ(world.ksLib.Get(kPackage)->lengthMs, 4400);
    ExpectAtRest();
}

TEST_F(Lecture, DeadOffice_LeavesAWholePackageWithEveryEntry) {
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).OfficeDies().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
    EXPECT_FALSE(session.recording.g_Recording);
    EXPECT_FALSE(world.ksLib.Running());
}

TEST_F(Lecture, WorkerThatDies_EndsTheShow_TellsSo_AndEveryEntryIsKept) {
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).EncoderCrashes().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    EXPECT_GE(world.ksLib.GetLength(kPackage), 8000);
    ExpectAtRest();
}

TEST_F(Lecture, FullDisk_EndsTheRecordingWithItsMediaIntact) {
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(5s).GoToSlide(2).At(7s).EncoderReports(13).At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
    ExpectAtRest();
}

// --- starts that fail ----------------------------------------------------------------------------------------------

TEST_F(Lecture, NoAudioDevice_EndsTheShowBeforeAnythingIsRecorded) {
    world.ksLib.audioDevices = u"";
    Play().PressRecord().At(10s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    EXPECT_EQ(world.app.DeckOf(kDeck).saved, -1);
    ExpectAtRest();
}

TEST_F(Lecture, DevicesThatCannotBeOpened_AreClosedAgain_AndTheShowEnds) {
    world.ksLib.queryDevice = 0;
    Play().PressRecord().At(10s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_TRUE(world.transcript.Has(u"ksLib.EncoderCloseDevice"));
    ExpectAtRest();
}

TEST_F(Lecture, DeviceResetThatFails_SaysSo_AndTheShowEnds) {
    world.faults.FailCall(u"ksLib.ksResetAVDevice", 1, sim::Once);
    Play().PressRecord().At(10s).Run();
    EXPECT_EQ(Boxes(), Texts{"ResetAVDevice Error!"});
    ExpectAtRest();
}

TEST_F(Lecture, HookOfAnotherRecorder_RefusesTheStart) {
    world.faults.FailCall(u"ksHook.InstallMessageHook", 1, sim::Once);
    Play().PressRecord().At(10s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.ksResetAVDevice"));
    ExpectAtRest();
}

TEST_F(Lecture, FinalDeckThatRecordsByItself_GetsItsMessage_AndTheShowEnds) {
    Set(u"chkAutoRecord", u"1");
    world.app.DeckOf(kDeck).markedFinal = true;
    Play().StartShow().At(10s).Run();
    EXPECT_EQ(Boxes(),
              Texts{"Please check whether this presentation is marked as final. If it is, remove Mark as Final "
                    "from it!"});
    ExpectAtRest();
}

TEST_F(Lecture, AutomaticStartThatFails_EndsTheShowToo) {
    Set(u"chkAutoRecord", u"1");
    world.ksLib.queryDevice = 0;
    Play().StartShow().At(10s).Run();
    ExpectAtRest();
}

TEST_F(Lecture, ShowThatIsGoneDuringTheStart_ClosesTheDevices_AndLeavesNoTemporaryFolder) {
    // The 300 ms of the hook and the first waits are slept; this Escape comes with the pump just before the encoder.
    Play().PressRecord().At(300ms).PressEscape().At(10s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    EXPECT_TRUE(world.transcript.Has(u"ksLib.EncoderCloseDevice"));
    EXPECT_FALSE(world.fs.FolderExists(String(kPackage) + u"._tmp"));
    EXPECT_EQ(Boxes(), Texts{});
    ExpectAtRest();
}

TEST_F(Lecture, SettingsThatCannotBeWritten_CostNoRecording) {
    world.faults.FailCall(u"settings.Write", 1, sim::ForEver);
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).PressEscape().At(20s).Run();
    EXPECT_FALSE(world.faults.Injected().empty());
    EXPECT_EQ(Boxes(), Texts{});
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    ASSERT_TRUE(world.ksLib.Get(kPackage));
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
}

TEST_F(Lecture, FaultWhileTheHostStillRuns_IsEndedByRecordItself) {
    world.app.version = u"11.0";  // starts inside Run
    world.ksLib.queryDevice = 0;
    Play().PressRecord().At(10s).Run();
    ExpectAtRest();
}

// --- the hostile thing happens meanwhile ---------------------------------------------------------------------------

TEST_F(Lecture, PresentationClosedWhileABoxAsks_StartsNothing) {
    Set(u"chkSldRgnOnly", u"0");
    world.app.DeckOf(kDeck).width = 720;  // 4:3 on a wide screen: the question comes
    world.box.AnswerAfter(2000, host::BoxAnswer::Yes, [this] { world.app.Close(kDeck); });
    Play().PressRecord().At(20s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    ExpectAtRest();
}

TEST_F(Lecture, ShowEndedAndAnotherStartedWhileABoxAsks_LeavesTheOtherShowAlone) {
    Set(u"chkSldRgnOnly", u"0");
    world.app.DeckOf(kDeck).width = 720;
    world.box.AnswerAfter(2000, host::BoxAnswer::Yes, [this] {
        world.app.PressEscape();
        world.app.StartShow(4);
    });
    Play().PressRecord().At(20s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    EXPECT_EQ(world.app.ShownSlide(), 4);
    EXPECT_TRUE(WorkFolders().empty());
    EXPECT_TRUE(world.presenter.OnScreen().empty());
}

TEST_F(Lecture, SecondStopWhileTheFirstIsFinishing_ChangesNothing) {
    world.ksLib.duringStop = [this] {
        world.app.Close(kDeck);
        world.loop.DoEvents();
        if (session.addIn.Viewer()) session.addIn.Viewer()->DoSlideShowEnd();
    };
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderStop"), 1);
    EXPECT_EQ(world.transcript.Count(u"show begin"), 1);
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    ExpectAtRest();
}

TEST_F(Lecture, StopKeyHeldDown_StopsOnce) {
    Play().PressRecord().At(5s).HookMessage(0x800C).HookMessage(0x800C).HookMessage(0x800C).At(20s).Run();
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderStop"), 1);
    ExpectAtRest();
}

TEST_F(Lecture, FileError_ShowsItsMessageFirst_ASecondTickStacks_ThenTheRecordingEnds) {
    world.presenter.Click(u"frmMsgBox", u"cmdOK").After(4000);
    Play().PressRecord().At(5s).EncoderReports(3).At(40s).Run();
    EXPECT_FALSE(world.app.ShowIsRunning());
    EXPECT_FALSE(session.recording.g_Recording);
    // The stop finds the fault still there: the temporary folder stays for the recovery at the next opening.
    EXPECT_TRUE(world.box.WasShown(u"write file error!"));
    EXPECT_TRUE(world.fs.FileExists(String(kPackage) + u"._tmp/media.rec.tmp"));
    EXPECT_EQ(Marker(u"recording"), u"1");
}

TEST_F(Lecture, SecondPressOfRecord_IsRefusedWhileTheRecordingLives) {
    Play().PressRecord().At(5s).GoToSlide(2).At(7s).PressRecord().At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
    ExpectAtRest();
}

TEST_F(Lecture, ToolbarPressDuringARecording_CannotEndItsSession) {
    world.faults.FailCall(u"app.GotoSlide", 2, sim::ForEver);
    Play().PressRecord().At(5s).Do([this] { session.addIn.DoRecord(); }).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    EXPECT_FALSE(world.ksLib.Get(kPackage)->torn);
    ExpectAtRest();
}

TEST_F(Lecture, LibraryThatCannotTellTheLength_CostsNoEntry) {
    Play()
        .PressRecord()
        .At(5s)
        .GoToSlide(2)
        .At(8s)
        .Do([this] { world.faults.FailCall(u"ksLib.GetLength", 1, sim::ForEver); })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves"}));
}

}  // namespace
}  // namespace kestrum
