// Starts that are refused or fail: the user is told, the show ends, nothing is left behind.
#include "recording/LectureDesk.h"
#include "support/DateText.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

struct Refusal : Lecture {
    /// Record was pressed; nothing came of it.
    void ExpectNothingLeft() {
        EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
        EXPECT_FALSE(world.fs.FolderExists(String(kPackage) + u"._tmp"));
        EXPECT_NE(Marker(u"recording"), u"1");
        EXPECT_EQ(world.app.DeckOf(kDeck).saved, -1);
        ExpectAtRest();
    }
    void PressRecordOnly() { Play().PressRecord().At(20s).Run(); }
    /// Everything is as it should be again: the next press records.
    void ExpectTheNextPressToRecord() {
        Play().PressRecord().At(5s).PressEscape().At(9s).Run();
        EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
        ExpectAtRest();
    }
};

TEST_F(Refusal, AMarkerThatAppearsBetweenTheShowAndItsStart_RefusesTheStart) {
    Play()
        .PressRecord()
        .At(50ms)
        .Do([this] {
            world.settings.Set(u"tokens\\PowerPoint", u"recording", u"1");
            world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"1000000");
            world.settings.Set(u"tokens\\PowerPoint", u"project", kPackage);
        })
        .At(20s)
        .Run();
    ASSERT_EQ(world.box.Shown().size(), 1U);
    EXPECT_NE(Boxes()[0].find("Another recording is in progress"), std::string::npos);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    ExpectAtRest();
}

TEST_F(Refusal, APresentationNeverSaved_EndsItsShow) {
    world.fs.Remove(kDeck);
    PressRecordOnly();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    ExpectNothingLeft();
}

TEST_F(Refusal, AProjectUnderEditing_EndsTheShow) {
    Set(u"touchTime", DateTimeText(world.loop.Now()));
    PressRecordOnly();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    ExpectNothingLeft();
}

TEST_F(Refusal, ADiskWithoutRoom_EndsTheShow_AndTakesTheMasksDown) {
    world.app.DeckOf(kDeck).width = 720;
    Set(u"chkSldRgnOnly", u"1");
    world.fs.AddDrive(u"/home/anna/talks", host::DriveType::Fixed, 99LL << 20);
    PressRecordOnly();
    ASSERT_EQ(world.box.Shown().size(), 1U);
    EXPECT_NE(Boxes()[0].find("99MB"), std::string::npos);
    ExpectNothingLeft();
}

TEST_F(Refusal, ARemovableDrive_IsOnlyWarnedOf) {
    world.fs.AddDrive(u"/home/anna/talks", host::DriveType::Removable, 1LL << 40);
    world.fs.Put(kDeck, "slides");
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    ExpectAtRest();
}

TEST_F(Refusal, AShowThatVanishesInTheVolumeOfEvents_StartsNothing) {
    Play().PressRecord().At(100ms).PressEscape().At(10s).Run();
    EXPECT_EQ(Boxes(), Texts{});
    ExpectNothingLeft();
}

// --- StartEncoder --------------------------------------------------------------------------------------------------

TEST_F(Refusal, DeviceResetThatFails_LeavesNothing) {
    world.faults.FailCall(u"ksLib.ksResetAVDevice", 1, sim::Once);
    PressRecordOnly();
    EXPECT_EQ(Boxes(), Texts{"ResetAVDevice Error!"});
    ExpectNothingLeft();
    ExpectTheNextPressToRecord();
}

TEST_F(Refusal, NoAudioDevice_LeavesNothing) {
    const String devices = world.ksLib.audioDevices;
    world.ksLib.audioDevices = u"";
    PressRecordOnly();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    ExpectNothingLeft();
    world.ksLib.audioDevices = devices;
    ExpectTheNextPressToRecord();
}

TEST_F(Refusal, ABusyEncoder_IsReadOnceAndThenUpTo51Times) {
    world.ksLib.nextStates.assign(52, -1);
    PressRecordOnly();
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderState"), 52);
    ASSERT_EQ(world.box.Shown().size(), 1U);
    EXPECT_NE(Boxes()[0].find("busy"), std::string::npos);
    ExpectNothingLeft();
    ExpectTheNextPressToRecord();
}

TEST_F(Refusal, AFreeEncoder_IsReadOnce) {
    Play().PressRecord().At(2s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderState"), 2) << "once before the start, once after the stop";
}

TEST_F(Refusal, DevicesThatCannotBeOpened_LeaveNothing) {
    world.ksLib.queryDevice = 0;
    PressRecordOnly();
    EXPECT_EQ(world.transcript.Count(u"ksLib.EncoderCloseDevice"), 1);
    ExpectNothingLeft();
    world.ksLib.queryDevice = 1;
    ExpectTheNextPressToRecord();
}

TEST_F(Refusal, AStartThatFails_LeavesTheSnapshotOfAnInterruptedRecordingAlone) {
    world.ksLib.queryDevice = 0;
    const String snapshot = String(kPackage) + u"._tmp/media.rec.tmp";
    world.processes.programs[u"Kestrum"].effect = [&](const auto&) {
        world.fs.Put(snapshot, "kept");
        return std::nullopt;
    };
    PressRecordOnly();
    EXPECT_TRUE(world.fs.FileExists(snapshot));
    ExpectAtRest();
}

TEST_F(Refusal, ARunTimeErrorInTheStart_IsShownWithItsName_AndLeavesNothing) {
    world.processes.programs[u"Kestrum"].effect = [&](const auto&) {
        world.faults.FailCall(u"fs.DeleteFile", 2, sim::Once);  // the empty package, behind the saved project file
        return std::nullopt;
    };
    PressRecordOnly();
    ASSERT_FALSE(world.box.Shown().empty());
    EXPECT_EQ(Boxes()[0].rfind("StartEncoder(): ", 0), 0U) << Boxes()[0];
    ExpectNothingLeft();
    world.processes.programs[u"Kestrum"] = {};
    ExpectTheNextPressToRecord();
}

TEST_F(Refusal, AFailedStart_KeepsAsking_UntilTheShowEnd_WhoItBelongsTo) {
    // An error of Record itself leaves the request standing: the show that it may have started is still its own.
    world.faults.FailCall(u"app.GotoSlide", 1, sim::Once);
    Play().PressRecord().At(50ms).Do([this] { EXPECT_TRUE(session.recording.g_RecordRequested); }).Run();
    EXPECT_EQ(world.box.Shown()[0].title, u"Record");
    Play().At(5s).PressEscape().At(9s).Run();
    EXPECT_FALSE(session.recording.g_RecordRequested);
    ExpectAtRest();
}

// --- the low-volume counter ----------------------------------------------------------------------------------------

TEST_F(Refusal, TheLowVolumeCounter_IsResetWhenARecordingStarts) {
    Set(u"chkLowVolDetect", u"1");
    session.devices.silenceCounter = 50;
    Play()
        .PressRecord()
        .At(5s)
        .Do([this] { EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmVolMsg")); })
        .PressEscape()
        .At(9s)
        .Run();
}

}  // namespace
}  // namespace kestrum
