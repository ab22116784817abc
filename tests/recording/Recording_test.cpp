// Whole recordings from the press of Record to the package, as the user and the next program see them.
// The encoder of these tests starts 600 ms after the press (100 ms timer, 300 ms hook, 200 ms settling), and an entry
// lies 150 ms behind its slide's event: a slide at 5 s is an entry at 4550 ms.
#include "recording/LectureDesk.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

TEST_F(Lecture, ShowFromSlideThree_IsRecordedWithItsSlidesInOrder) {
    world.app.Select({3});
    Play().PressRecord().At(5s).GoToSlide(4).At(9s).GoToSlide(5).At(12s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Light", "4550 Sound", "8550 Thanks"}));
    auto package = world.ksLib.Get(kPackage);
    EXPECT_EQ(package->keyFrames, (std::vector<std::int32_t>{0, 4550, 8550}));
    EXPECT_EQ(package->lengthMs, 11400);
    EXPECT_FALSE(package->torn);
    EXPECT_EQ(Boxes(), Texts{});
    ExpectAtRest();
}

TEST_F(Lecture, Package_TellsTheFrameSizeAndLengthOfTheRecording) {
    Play().PressRecord().At(12s).PressEscape().At(20s).Run();
    EXPECT_EQ(session.project.g_Project.screenSize, u"1280x720");
    EXPECT_EQ(session.project.g_Project.duration(), 11400);
    EXPECT_NE(world.ksLib.Get(kPackage)->stored.at("project").find("1280x720"), std::string::npos);
}

TEST_F(Lecture, SecondRecording_AppendsItsFirstEntryAtTheOldLength) {
    Play().PressRecord().At(12s).PressEscape().At(20s).Run();
    world.app.Select({5});
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "11400 Thanks"}));
    EXPECT_EQ(world.ksLib.Get(kPackage)->keyFrames, (std::vector<std::int32_t>{0, 11400}));
    ExpectAtRest();
}

TEST_F(Lecture, SecondRecordStraightAfterTheFirst_FindsEventsArrivingAndANewWindow) {
    Play().PressRecord().At(4s).PressEscape().At(4s).Run();
    EXPECT_EQ(world.windows.OwnCount(u"frmViewer"), 0);
    Play()
        .PressRecord()
        .At(2s)
        .Do([this] { EXPECT_EQ(world.windows.OwnCount(u"frmViewer"), 1); })
        .At(3s)
        .GoToSlide(2)
        .At(6s)
        .PressEscape()
        .At(9s)
        .Run();
    EXPECT_EQ(StoredEntries().size(), 3U);
    EXPECT_EQ(Boxes(), Texts{});
    ExpectAtRest();
}

TEST_F(Lecture, GoingBack_AddsAnEntry_TheSameSlideAgainDoesNot) {
    Play()
        .PressRecord()
        .At(5s)
        .GoToSlide(2)
        .At(8s)
        .GoToSlide(2)
        .At(9s)
        .GoToSlide(1)
        .At(12s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves", "8550 Welcome"}));
}

TEST_F(Lecture, SlideWithoutATitle_IsCalledByItsNumber) {
    world.app.DeckOf(kDeck).slides[1].title.reset();
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Slide 2"}));
}

TEST_F(Lecture, SkipPres_LeavesOneEntryOfAQuickRun_WithTheLastTitleAndPosition) {
    Set(u"chkSkipPres", u"1");
    auto play = Play();
    play.PressRecord().At(5s);
    for (int slide : {2, 3, 4, 5, 1}) play.GoToSlide(slide).After(200ms);
    play.At(9s).GoToSlide(3).At(12s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "5350 Welcome", "8550 Light"}));
}

TEST_F(Lecture, SkipPres_FirstChangeSoonAfterTheStart_IsNotQuick) {
    Set(u"chkSkipPres", u"1");
    Play().PressRecord().At(1600ms).GoToSlide(2).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "1150 Waves"}));
}

TEST_F(Lecture, WithoutSkipPres_QuickSlidesStayEntries) {
    Play().PressRecord().At(5s).GoToSlide(2).At(5300ms).GoToSlide(3).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves", "4850 Light"}));
}

TEST_F(Lecture, KeyFrameThatWasNotMade_LosesItsEntryOnly_AndTheSlideCountsAsLeft) {
    Play()
        .PressRecord()
        .At(4s)
        .Do([this] { world.ksLib.nextKeyFrames = {0}; })
        .GoToSlide(2)
        .At(6s)
        .GoToSlide(1)
        .At(8s)
        .GoToSlide(2)
        .At(12s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "5550 Welcome", "7550 Waves"}));
}

TEST_F(Lecture, ShowThatEndsWithinTheFirstTenthOfASecond_StartsNothingAndSaysNothing) {
    Play().PressRecord().At(50ms).PressEscape().At(10s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderSetFilename"));
    EXPECT_FALSE(world.fs.FileExists(kPackage));
    EXPECT_EQ(Boxes(), Texts{});
    ExpectAtRest();
}

TEST_F(Lecture, AutoRecord_RecordsAShowStartedByHand_FromItsFirstSlide) {
    Set(u"chkAutoRecord", u"1");
    world.app.Select({});  // what Record would refuse
    Play().StartShow(2).At(5s).GoToSlide(3).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Waves", "4550 Light"}));
    EXPECT_EQ(session.recording.g_InitialSlide, 2);
    ExpectAtRest();
}

TEST_F(Lecture, ShowStartedByHand_GetsTheTracerOnly_AndWritesNoMarker) {
    Play()
        .StartShow()
        .At(2s)
        .Do([this] {
            EXPECT_EQ(world.hooks.MouseHooks(), 1U);
            EXPECT_EQ(world.hooks.KeyHooks(), 1U);
        })
        .At(5s)
        .GoToSlide(3)
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(Marker(u"recording"), u"");
    EXPECT_FALSE(world.fs.FileExists(kPackage));
    EXPECT_EQ(world.hooks.MouseHooks(), 0U);
    EXPECT_EQ(world.hooks.KeyHooks(), 0U);
}

TEST_F(Lecture, SavedFlag_IsWhatItWasBeforeTheShow) {
    world.app.DeckOf(kDeck).saved = -1;
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.app.DeckOf(kDeck).saved, -1);
}

TEST_F(Lecture, Markers_TellOtherProgramsAndBeat_AndAreTakenBackAtTheEnd) {
    String first;
    Play()
        .PressRecord()
        .At(2s)
        .Do([&] {
            EXPECT_EQ(Marker(u"recording"), u"1");
            EXPECT_EQ(Marker(u"project"), kPackage);
            first = Marker(u"touchtime");
        })
        .At(25s)
        .Do([&] { EXPECT_NE(Marker(u"touchtime"), first); })
        .At(30s)
        .PressEscape()
        .At(40s)
        .Run();
    EXPECT_EQ(Marker(u"recording"), u"0");
    EXPECT_EQ(Marker(u"touchtime"), u"0");
    EXPECT_EQ(Marker(u"project"), u"");
    world.loop.Advance(60000);
    EXPECT_EQ(Marker(u"touchtime"), u"0");
}

TEST_F(Lecture, EveryEntry_IsInThePackageBeforeTheRecordingEnds_TheFirstIncluded) {
    Play()
        .PressRecord()
        .At(2s)
        .Do([this] { EXPECT_NE(world.ksLib.Get(kPackage)->journal.find("Welcome"), std::string::npos); })
        .At(5s)
        .GoToSlide(2)
        .At(6s)
        .Do([this] {
            std::string journal = world.ksLib.Get(kPackage)->journal;
            EXPECT_EQ(journal.rfind("0\t", 0), 0U);
            EXPECT_NE(journal.find("\n4550\t"), std::string::npos);
            EXPECT_NE(journal.find("\tWaves\t"), std::string::npos);
        })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
}

TEST_F(Lecture, StartOfARecording_RegistersThePackageInTheRecentList) {
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    auto runs = world.processes.Runs(u"Kestrum");
    ASSERT_EQ(runs.size(), 1U);
    EXPECT_EQ(runs[0].arguments, (std::vector<String>{u"-regpath", kPackage}));
    EXPECT_FALSE(world.app.commandBars.at(u"Slide Show"));
}

TEST_F(Lecture, MissingRegistrationProgram_DoesNotHurt) {
    world.processes.programs.clear();
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    EXPECT_EQ(Boxes(), Texts{});
}

TEST_F(Lecture, StartPen_GivesTheShowARedPen) {
    Set(u"chkStartPen", u"1");
    world.app.pointerColor = 0x123456;
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.app.pointerType, host::PointerType::Pen);
    EXPECT_EQ(world.app.pointerColor, 0x0000FF);
}

// --- hosts of other versions ---------------------------------------------------------------------------------------

TEST_F(Lecture, OldHost_StartsInsideTheEventOfTheInitialSlide_OthersWait) {
    world.app.version = u"11.0";
    world.app.Select({3});
    Play().PressRecord().At(5s).GoToSlide(4).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Light", "4650 Sound"}));
    ExpectAtRest();
}

TEST_F(Lecture, HostFourteen_HasItsShowWindowRepaintedAtASlideChange) {
    auto show = world.windows.AddForeign(u"screenClass", u"show");
    String line = u"windows.InvalidateAndUpdate " + host::FromUtf8(std::to_string(show));
    world.app.version = u"14.0";
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(world.transcript.Count(line), 1);
    world.app.version = u"16.0";
    Play().PressRecord().At(5s).GoToSlide(2).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(world.transcript.Count(line), 1);
}

// --- several presentations and programs ----------------------------------------------------------------------------

TEST_F(Lecture, EventsOfAnotherPresentation_DoNotTouchARunningRecording) {
    const String other = u"/home/anna/talks/other.pptx";
    Play()
        .PressRecord()
        .At(5s)
        .Do([&] {
            world.app.Open(sim::Deck::Titled(other, {u"Foreign"}));
            world.app.StartShow();
        })
        .At(7s)
        .Do([&] { world.app.Close(other); })
        .At(9s)
        .GoToSlide(2)
        .At(12s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "8550 Waves"}));
    ExpectAtRest();
}

TEST_F(Lecture, AnotherLiveRecording_RefusesTheStart_AndTheShowEnds) {
    world.settings.Set(u"tokens\\Larkspin", u"project", u"/home/anna/other.ktr");
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", u"1000000");
    Play().PressRecord().At(5s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    ExpectAtRest();
}

TEST_F(Lecture, StaleMarkerOfACrashedSession_RefusesNothing) {
    world.settings.Set(u"tokens\\PowerPoint", u"recording", u"1");
    world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"1");
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
}

TEST_F(Lecture, RecorderOfAnotherProcess_IsToldTheTitles_AndTheEnd) {
    auto recorder = world.windows.AddForeign(u"", u"LarkspinWin");
    Play().StartShow(2).At(5s).PressEscape().At(9s).Run();
    std::vector<std::string> told;
    for (const auto& [window, message] : world.windows.received) {
        EXPECT_EQ(window, recorder);
        EXPECT_EQ(message.message, 74);
        told.push_back(message.data);
    }
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0], std::string("Waves\0\0\0\0\0", 10));
    EXPECT_EQ(told[1].substr(0, told[1].find('\0')), "** after lecture.pptx");
}

TEST_F(Lecture, TitleFromAnotherProcess_BecomesAnEntryWhileRecording) {
    auto tell = [this](const std::string& bytes) {
        world.windows.SendMessage(world.windows.Own(u"frmViewer"), host::WindowMessage{74, 0, 0, bytes});
    };
    Play()
        .PressRecord()
        .At(5s)
        .Do([&] {
            tell(std::string("Film\0\0\0\0", 8));
            EXPECT_TRUE(session.recording.showInProgress);
            EXPECT_TRUE(world.fs.FileExists(String(kPackage) + u"._tmp/media.rec.tmp"));
        })
        .At(6s)
        .Do([&] {
            tell("** after film");
            EXPECT_FALSE(session.recording.showInProgress);
        })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4400 Film", "5400 ** after film"}));
}

TEST_F(Lecture, TitleFromAnotherProcess_WithoutARecording_IsIgnored) {
    world.windows.SendMessage(world.windows.Own(u"frmViewer"), host::WindowMessage{74, 0, 0, "Film"});
    EXPECT_FALSE(world.transcript.Has(u"ksLib.AddKeyFrame"));
}

}  // namespace
}  // namespace kestrum
