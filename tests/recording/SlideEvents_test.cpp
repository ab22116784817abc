// What a slide event does and what it leaves alone: waits, quickness, events of a start and of other presentations.
#include "recording/LectureDesk.h"
#include "recording/modViewer.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

constexpr char16_t kOther[] = u"/home/anna/talks/other.pptx";

// --- waits ---------------------------------------------------------------------------------------------------------

TEST_F(Lecture, AWait_BlocksAndPumpsNothing) {
    // The second change is due 50 ms into the 150 ms of the first: it is not looked at before those have passed.
    Play().PressRecord().At(5s).GoToSlide(2).At(5050ms).GoToSlide(3).At(9s).PressEscape().At(20s).Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves", "4700 Light"}));
}

TEST_F(Lecture, TheWaitOfTheHook_PumpsNothingEither) {
    // Escape 150 ms into the 300 ms wait is handled at the next pump, behind the checks of the start.
    Play().PressRecord().At(250ms).PressEscape().At(10s).Run();
    EXPECT_TRUE(world.transcript.Has(u"ksLib.EncoderSetFilename"));
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    ExpectAtRest();
}

// --- quickness -----------------------------------------------------------------------------------------------------

TEST_F(Lecture, Quickness_CountsSlideEvents_NotEntries) {
    Set(u"chkSkipPres", u"1");
    Play()
        .PressRecord()
        .At(5s)
        .GoToSlide(2)
        .At(8s)
        .Do([this] { world.ksLib.nextKeyFrames = {0}; })
        .GoToSlide(3)  // makes no entry, but is a slide change all the same
        .At(9s)
        .GoToSlide(4)  // so this one comes quickly after it, and takes the place of the last entry
        .At(12s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "8550 Sound"}));
}

TEST_F(Lecture, Quickness_IsNotCountedForAnEventThatStaysOnItsSlide) {
    Set(u"chkSkipPres", u"1");
    Play()
        .PressRecord()
        .At(5s)
        .GoToSlide(2)
        .At(8s)
        .GoToSlide(2)
        .At(8500ms)
        .GoToSlide(3)
        .At(12s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves", "8050 Light"}));
}

TEST_F(Lecture, Quickness_EndsAtTwoSeconds) {
    Set(u"chkSkipPres", u"1");
    auto play = Play();
    // Each change is timed at the end of its 150 ms.
    play.PressRecord()
        .At(5s)
        .GoToSlide(2)
        .At(7s)
        .GoToSlide(3)
        .At(8999ms)
        .GoToSlide(4)
        .At(12s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), (Texts{"0 Welcome", "4550 Waves", "8549 Sound"}));
}

// --- entries -------------------------------------------------------------------------------------------------------

TEST_F(Lecture, TheFirstEntry_HasNoKeyFrameCall) {
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    EXPECT_FALSE(world.transcript.Has(u"ksLib.AddKeyFrame"));
}

TEST_F(Lecture, TheProjectFileOnDisk_LagsOneEntryBehindTheIndex) {
    Play()
        .PressRecord()
        .At(5s)
        .GoToSlide(2)
        .At(8s)
        .GoToSlide(3)
        .At(9s)
        .Do([this] {
            const std::string file = world.fs.Bytes(session.support.workFolder + u"/project.ksp");
            EXPECT_NE(file.find("<title>Waves</title>"), std::string::npos);
            EXPECT_EQ(file.find("<title>Light</title>"), std::string::npos);
            EXPECT_EQ(Entries().size(), 3U);
        })
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries().size(), 3U);
}

TEST_F(Lecture, AChangeDuringTheStart_IsNotIndexed) {
    Set(u"chkSldRgnOnly", u"0");
    world.app.DeckOf(kDeck).width = 720;
    world.box.AnswerAfter(2000, host::BoxAnswer::Yes, [this] { world.app.GoToSlide(3); });
    Play().PressRecord().At(9s).GoToSlide(4).At(12s).PressEscape().At(20s).Run();
    const Texts entries = StoredEntries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0], "0 Light") << "the recording begins on the slide that is on screen by then";
    EXPECT_NE(entries[1].find("Sound"), std::string::npos);
    ExpectAtRest();
}

TEST_F(Lecture, ThePropertiesOfThePresentation_ReachThePackage) {
    world.app.DeckOf(kDeck).properties = {{u"title", u"On Waves"}, {u"author", u"Anna Berg"}};
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    const std::string project = world.ksLib.Get(kPackage)->stored.at("project");
    EXPECT_NE(project.find("On Waves"), std::string::npos);
    EXPECT_NE(project.find("Anna Berg"), std::string::npos);
}

// --- other presentations and recorders -----------------------------------------------------------------------------

TEST_F(Lecture, EventsOfOtherPresentations_TouchNothing) {
    Play()
        .PressRecord()
        .At(5s)
        .Do([&] {
            const std::int32_t initial = session.recording.g_InitialSlide, current = session.recording.g_CurrentSlide;
            const auto keyFrames = world.transcript.Count(u"ksLib.AddKeyFrame");
            world.app.Open(sim::Deck::Titled(kOther, {u"Foreign", u"More"}));
            world.app.StartShow(2);
            EXPECT_EQ(session.recording.g_InitialSlide, initial);
            EXPECT_EQ(session.recording.g_CurrentSlide, current);
            EXPECT_TRUE(session.recording.g_PrepareStarted && session.recording.g_EncoderStarted);
            world.app.PressEscape();
            EXPECT_EQ(world.transcript.Count(u"ksLib.AddKeyFrame"), keyFrames);
            EXPECT_TRUE(session.recording.g_RecordRequested);
            EXPECT_TRUE(world.ksLib.Running());
            world.app.Activate(kDeck);
        })
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    ExpectAtRest();
}

TEST_F(Lecture, AShowBesideALiveRecordingOfAnotherProcess_RunsUnrecorded) {
    Set(u"chkAutoRecord", u"1");
    world.settings.Set(u"tokens\\PowerPoint", u"recording", u"1");
    world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"1000000");
    world.settings.Set(u"tokens\\PowerPoint", u"project", u"/home/anna/elsewhere.ktr");
    Play().StartShow().At(5s).Do([this] { EXPECT_TRUE(world.app.ShowIsRunning()); }).PressEscape().At(9s).Run();
    EXPECT_FALSE(world.transcript.Has(u"ksLib.EncoderStart"));
    EXPECT_EQ(Boxes(), Texts{});
    EXPECT_EQ(Marker(u"recording"), u"1");
    EXPECT_EQ(Marker(u"project"), u"/home/anna/elsewhere.ktr");
}

TEST_F(Lecture, TheRecorderWindow_IsSearchedByItsClass_ThenByItsTitle) {
    const auto byTitle = world.windows.AddForeign(u"Other", u"LarkspinWin");
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), byTitle);
    const auto byClass = world.windows.AddForeign(u"LarkspinWin", u"Recorder");
    EXPECT_EQ(modViewer::FindRecorderWindow(session.c), byClass);
    world.windows.RemoveForeign(byClass);
    world.windows.RemoveForeign(byTitle);
    EXPECT_FALSE(modViewer::FindRecorderWindow(session.c));
}

TEST_F(Lecture, TheRecorderOfAnotherProcess_IsToldAfter150Ms_AndNotWhileThisOneRecords) {
    world.windows.AddForeign(u"LarkspinWin", u"");
    std::int64_t toldAt = 0;
    Play()
        .StartShow(2)
        .At(5s)
        .Do([&] {
            const std::int64_t before = world.loop.Elapsed();
            world.app.GoToSlide(3);
            toldAt = world.loop.Elapsed() - before;
        })
        .PressEscape()
        .At(9s)
        .Run();
    EXPECT_EQ(toldAt, 150);
    std::size_t told = 0;
    Play()
        .PressRecord()
        .At(2s)
        .Do([&] { told = world.windows.received.size(); })
        .At(5s)
        .GoToSlide(2)
        .At(9s)
        .PressEscape()
        .At(20s)
        .Run();
    EXPECT_GT(told, 0U);
    EXPECT_EQ(world.windows.received.size(), told) << "neither the slides of a recording nor its end";
}

TEST_F(Lecture, KeysAreFollowed_UntilTheLastShowHasEnded) {
    Play()
        .StartShow()
        .At(2s)
        .Do([this] {
            world.app.Open(sim::Deck::Titled(kOther, {u"Foreign"}));
            world.app.StartShow();
            world.app.PressEscape();
            EXPECT_EQ(world.hooks.KeyHooks(), 1U) << "the first show goes on";
        })
        .PressEscape()
        .At(5s)
        .Run();
    EXPECT_EQ(world.hooks.KeyHooks(), 0U);
}

}  // namespace
}  // namespace kestrum
