// What is said before a recording: one test for each thing that can be wrong, and the order of their weight.
#include "recording/StartAdvice.h"

#include "recording/EarlierRecording.h"
#include "recording/LectureDesk.h"

namespace kestrum::recording {
namespace {

using Lines = std::vector<std::string>;

struct AdviceTest : test::Lecture {
    AdviceTest() {
        world.fs.Put(world.places.installFolder + u"/res.xml", test::InstallFile("res.xml"));
        world.ksLib.MixerSet(0, 1);
    }
    Lines Said(const String& deck = kDeck) {
        Lines lines;
        for (const Advice& advice : StartAdvice(session.c, deck)) lines.push_back(host::ToUtf8(advice.line));
        return lines;
    }
    void SetFree(std::int64_t megabytes) {
        world.fs.AddDrive(u"/home/anna/talks", host::DriveType::Fixed, megabytes << 20);
    }
    /// A package whose entries were recorded at these times.
    void PutPackage(std::int32_t lengthMs, const std::vector<std::string>& dates) {
        std::string project = "<?xml version=\"1.0\"?><root><project><index>";
        for (const std::string& date : dates) project += "<item><pos>0</pos><recdate>" + date + "</recdate></item>";
        project += "</index></project></root>";
        sim::Package package;
        package.lengthMs = lengthMs;
        package.stored["project"] = project;
        world.ksLib.Put(kPackage, package);
    }
};

TEST_F(AdviceTest, NothingIsSaid_WhenNothingIsWrong) {
    EXPECT_EQ(Said(), Lines{});
}

TEST_F(AdviceTest, NoMicrophone_IsSaid) {
    world.ksLib.audioDevices.clear();
    EXPECT_EQ(Said(), Lines{"No microphone is connected: nothing can be recorded without one."});
    world.faults.FailCall(u"ksLib.ksQueryAudioDevice", 1, sim::Once);
    world.ksLib.audioDevices = u"Microphone##0";
    EXPECT_EQ(Said().size(), 1U) << "the sound server does not answer";
}

TEST_F(AdviceTest, MicrophoneThatIsMuted_OrTurnedDownToNothing_IsSaid) {
    const Lines off{"The microphone \"Microphone\" is switched off: the recording would be silent."};
    world.ksLib.MixerSet(0, 0);
    EXPECT_EQ(Said(), off);
    world.ksLib.MixerSet(0, 1);
    world.ksLib.volumeScale = 0;
    EXPECT_EQ(Said(), off);
}

TEST_F(AdviceTest, MicrophoneWithoutASwitch_IsNotTakenForMuted) {
    world.ksLib.MixerSet(0, 0);
    world.ksLib.mixerSwitches.clear();
    world.ksLib.volumeScale = -1;
    EXPECT_EQ(Said(), Lines{});
}

TEST_F(AdviceTest, MicrophoneInThePlaceOfTheChosenOne_IsSaid) {
    Set(u"audioDevice", u"Desk microphone");
    EXPECT_EQ(Said(), Lines{"\"Desk microphone\" is not connected; \"Microphone\" is recorded in its place."});
    world.ksLib.audioDevices = u"Microphone##0_&&_Desk microphone##0";
    EXPECT_EQ(Said(), Lines{});
}

TEST_F(AdviceTest, Space_IsToldInMinutes_BelowTwoHours) {
    SetFree(100 + 1200);
    EXPECT_EQ(Said(), Lines{});
    SetFree(100 + 1199);
    EXPECT_EQ(Said(), Lines{"The disk has room for about 119 more minutes of recording."});
    SetFree(40);
    EXPECT_EQ(Said(), Lines{"The disk has room for about 0 more minutes of recording."});
}

TEST_F(AdviceTest, Space_IsMeasuredByTheRecordingSoFar) {
    PutPackage(10 * 60000, {});
    world.fs.SetReportedSize(kPackage, 20LL << 20);  // two megabytes a minute
    SetFree(100 + 200);
    EXPECT_EQ(Said()[0], "The disk has room for about 100 more minutes of recording.");
}

TEST_F(AdviceTest, SpaceOfANetworkFolder_IsNotGuessed) {
    world.fs.AddDrive(u"//server/talks", host::DriveType::Network, 1 << 20);
    EXPECT_EQ(Said(u"//server/talks/lecture.pptx"), Lines{});
}

TEST_F(AdviceTest, TemporaryFolder_IsSaid) {
    const String temp = world.places.temp;
    EXPECT_NE(Said(temp + u"/mail/lecture.pptx").at(0).find("temporary folder"), std::string::npos);
    EXPECT_EQ(Said(u"/home/anna/tmp/lecture.pptx"), Lines{}) << "one of that name only";
}

TEST_F(AdviceTest, SynchronisedFolder_IsSaid_ByItsNameOrItsMark) {
    EXPECT_NE(
        Said(u"/home/anna/Nextcloud/course/week 1/lecture.pptx").at(0).find("\"Nextcloud\", which is synchronised"),
        std::string::npos);
    EXPECT_EQ(Said(u"/home/anna/OneDrive - University/lecture.pptx").size(), 1U);
    EXPECT_EQ(Said(u"/home/anna/OneDriver/lecture.pptx"), Lines{});
    world.fs.CreateFolder(u"/home/anna/talks/.stfolder");
    EXPECT_NE(Said().at(0).find("\"talks\""), std::string::npos);
}

TEST_F(AdviceTest, ScreenThatGoesDark_IsSaid) {
    world.power.keepsDisplayAwake = false;
    EXPECT_EQ(Said().size(), 1U);
    EXPECT_NE(Said()[0].find("may go dark"), std::string::npos);
}

TEST_F(AdviceTest, LargeScreen_IsSaid_OfANewRecordingOnly) {
    world.monitors.SetSingle(1920, 1080);
    session.display.g_RcmdResWidth = 1280;
    session.display.g_RcmdResHeight = 720;
    ASSERT_EQ(Said().size(), 1U);
    EXPECT_NE(Said()[0].find("1920x1080 pixels; at 1280x720"), std::string::npos);
    PutPackage(60000, {});
    EXPECT_EQ(Said(), Lines{"Continues 0:01."});
}

TEST_F(AdviceTest, Continued_TellsLengthAndTheDayOfTheLastPart) {
    const auto recordedOn = [this](const std::string& date) {
        PutPackage(20 * 60000, {"2025/1/1 09:00:00", date + " 23:59:59"});
        return Said().at(0);
    };
    EXPECT_EQ(recordedOn("2026/1/5"), "Continues 0:20 of today.");  // a Monday
    EXPECT_EQ(recordedOn("2026/1/4"), "Continues 0:20 of Sunday.");
    EXPECT_EQ(recordedOn("2025/12/31"), "Continues 0:20 of Wednesday.");
    EXPECT_EQ(recordedOn("2025/12/30"), "Continues 0:20 of Tuesday.");
    EXPECT_EQ(recordedOn("2025/12/29"), "Continues 0:20 of 2025-12-29.");
    EXPECT_EQ(recordedOn("2026/1/6"), "Continues 0:20 of 2026-01-06.") << "a clock that was set back";
}

TEST_F(AdviceTest, Continued_WithoutAProjectThatTellsADay_TellsTheLength) {
    PutPackage(90 * 60000, {"tomorrow"});
    EXPECT_EQ(Said(), Lines{"Continues 1:30."});
    sim::Package package;
    package.lengthMs = 12000;
    world.ksLib.Put(kPackage, package);
    EXPECT_EQ(Said(), Lines{"Continues 12 s."});
    EXPECT_EQ(world.fs.ListFolder(world.places.temp).size(), 0U) << "no copy stays";
}

TEST_F(AdviceTest, WhatCountsMost_ComesFirst) {
    world.monitors.SetSingle(1920, 1080);
    session.display.g_RcmdResWidth = 1280;
    world.ksLib.MixerSet(0, 0);
    world.power.keepsDisplayAwake = false;
    world.fs.AddDrive(u"/tmp", host::DriveType::Fixed, 200LL << 20);
    std::vector<AdviceKind> kinds;
    for (const Advice& advice : StartAdvice(session.c, u"/tmp/Dropbox/lecture.pptx")) kinds.push_back(advice.kind);
    EXPECT_EQ(kinds, (std::vector<AdviceKind>{AdviceKind::MicrophoneOff, AdviceKind::LittleSpace,
                                              AdviceKind::TemporaryFolder, AdviceKind::SynchronisedFolder,
                                              AdviceKind::ScreenSleeps, AdviceKind::LargeScreen}));
}

TEST_F(AdviceTest, WhatCannotBeAsked_IsLeftOut) {
    PutPackage(60000, {});
    world.power.keepsDisplayAwake = false;
    world.faults.FailCall(u"ksLib.GetExtendDataFromProject", 1, sim::ForEver);
    world.faults.FailCall(u"fs.ReadFile", 1, sim::ForEver);
    EXPECT_EQ(Said().size(), 2U);
}

}  // namespace
}  // namespace kestrum::recording
