// What the person who records is told before, during and after.
#include "addin/frmRecorded.h"
#include "recording/LectureDesk.h"
#include "recording/frmAdvice.h"
#include "recording/frmLecturer.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;

struct CompanionTest : test::Lecture {
    CompanionTest() {
        world.fs.Put(world.places.installFolder + u"/res.xml", test::InstallFile("res.xml"));
        world.ksLib.MixerSet(0, 1);
        Set(u"firstRunDone", u"1");
        session.Accompany(false);
    }
    /// Lines of the notice, in the order in which they came up.
    void NoteLines() {
        m_watch = world.loop.StartTimer(u"reader", 50, host::TimerReentry::Entered, [this] {
            const auto* notice = dynamic_cast<frmAdvice*>(session.c.forms.Find(u"frmAdvice"));
            if (!notice || !notice->IsVisible()) return;
            const std::string line = host::ToUtf8(notice->Label1.Caption());
            if (lines.empty() || lines.back() != line) lines.push_back(line);
        });
    }
    void Record(std::chrono::milliseconds length = 10s) {
        Play().PressRecord().At(length).PressEscape().After(5s).Run();
    }
    frmRecorded* Card() { return dynamic_cast<frmRecorded*>(session.c.forms.Find(u"frmRecorded")); }
    frmLecturer* Bar() { return dynamic_cast<frmLecturer*>(session.c.forms.Find(u"frmLecturer")); }
    void Level(std::int32_t level) { world.ksLib.SendLevel(level); }

    std::vector<std::string> lines;
    std::unique_ptr<host::ITimer> m_watch;
};

// --- first run -----------------------------------------------------------------------------------------------------

TEST_F(CompanionTest, FirstRecordingOfAUser_AsksForTheMicrophone_Once_AndGoesOn) {
    Set(u"firstRunDone", u"");
    world.presenter.Click(u"frmFirstRun", u"cmdSave");
    Record();
    EXPECT_EQ(StoredEntries().size(), 1U);
    Record();
    EXPECT_EQ(StoredEntries().size(), 2U);
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

TEST_F(CompanionTest, FirstRun_WithTwoMonitors_AsksForThatOfTheSlides) {
    Set(u"firstRunDone", u"");
    world.monitors.AddRight(1024, 768);
    world.presenter.Select(u"frmFirstRun", u"cmbMonitor", 2).Click(u"frmFirstRun", u"cmdSave");
    Record();
    EXPECT_EQ(world.app.showMonitor, 2);
    EXPECT_EQ(StoredEntries().size(), 1U);
    world.app.showMonitor = 0;  // an office of its own for the next recording
    Record();
    EXPECT_EQ(world.app.showMonitor, 2);
    world.app.showMonitor = 1;  // the user has told the host otherwise
    Record();
    EXPECT_EQ(world.app.showMonitor, 1);
    world.monitors.all.pop_back();
    world.app.showMonitor = 0;
    Record();
    EXPECT_EQ(world.app.showMonitor, 0);
    EXPECT_EQ(StoredEntries().size(), 4U);
}

TEST_F(CompanionTest, FirstRun_ClosedByItsFrame_StartsNothing) {
    Set(u"firstRunDone", u"");
    world.presenter.UserCloses(u"frmFirstRun");
    Record();
    EXPECT_FALSE(world.transcript.Has(u"show begin"));
    world.presenter.PressEscape(u"frmFirstRun");  // skipped: goes on
    Record();
    EXPECT_TRUE(world.transcript.Has(u"show begin"));
}

TEST_F(CompanionTest, FirstRun_IsNotAsked_WhereNobodyIsThere_NorOfAShowThatRecordsItself) {
    Set(u"firstRunDone", u"");
    Set(u"chkAutoRecord", u"1");
    Play().StartShow().At(5s).PressEscape().At(9s).Run();
    session.companion.reset();
    Set(u"chkAutoRecord", u"0");
    Record();
    EXPECT_EQ(StoredEntries().size(), 2U);
}

// --- before --------------------------------------------------------------------------------------------------------

TEST_F(CompanionTest, Record_WhenNothingIsWrong_SaysNothing) {
    NoteLines();
    Record();
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(StoredEntries().size(), 1U);
}

TEST_F(CompanionTest, Record_SaysWhatIsContinued) {
    Record(80s);
    NoteLines();
    Record();
    EXPECT_EQ(lines, std::vector<std::string>{"Continues 0:01 of today."});
}

TEST_F(CompanionTest, Record_SaysOneLine_ThatCountsMost_AndStarts) {
    world.power.keepsDisplayAwake = false;
    world.ksLib.MixerSet(0, 0);
    NoteLines();
    Record();
    EXPECT_EQ(lines, std::vector<std::string>{
                         "The microphone \"Microphone\" is switched off: the recording would be silent."});
    EXPECT_EQ(StoredEntries().size(), 1U);
}

TEST_F(CompanionTest, TheLine_GoesByItself_AfterEightSeconds) {
    world.power.keepsDisplayAwake = false;
    Play().PressRecord().At(7s).Do([this] { EXPECT_TRUE(session.c.forms.IsFormLoaded(u"frmAdvice")); }).At(12s).Run();
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmAdvice"));
    Play().PressEscape().After(5s).Run();
}

TEST_F(CompanionTest, TheVolumeDialog_TellsTheLine_AndItIsNotToldTwice) {
    Set(u"chkSetVolBefRec", u"1");
    world.power.keepsDisplayAwake = false;
    std::string told;
    world.presenter.Do(u"frmVolSetting", u"read", [&](ui::Form& form) {
        auto* line = dynamic_cast<ui::Label*>(form.FindControl(u"lAdvice"));
        if (line->Visible()) told = host::ToUtf8(line->Caption());
    });
    world.presenter.Click(u"frmVolSetting", u"cmdRec");
    NoteLines();
    Record();
    EXPECT_EQ(told, "The screen may go dark during the recording: this desktop could not be asked to keep it on.");
    EXPECT_TRUE(lines.empty());
}

TEST_F(CompanionTest, TheVolumeDialog_WithNothingToTell_ShowsNoLine) {
    Set(u"chkSetVolBefRec", u"1");
    world.presenter.Do(u"frmVolSetting", u"read",
                       [&](ui::Form& form) { EXPECT_FALSE(form.FindControl(u"lAdvice")->Visible()); });
    world.presenter.Click(u"frmVolSetting", u"cmdRec");
    Record();
}

// --- during --------------------------------------------------------------------------------------------------------

TEST_F(CompanionTest, Bar_StandsOnTheOtherMonitor_WithStateTimeAndLevel) {
    world.monitors.AddRight(1024, 768);
    Play()
        .PressRecord()
        .At(8s)
        .Do([this] { Level(60); })
        .At(9s)
        .Do([this] {
            ASSERT_NE(Bar(), nullptr);
            EXPECT_TRUE(Bar()->IsVisible());
            EXPECT_GE(Bar()->Place().left, 1280);
            EXPECT_EQ(Bar()->lState.Caption(), u"Recording");
            EXPECT_EQ(Bar()->InputLevel.Lit(), 12);
            EXPECT_EQ(host::ToUtf8(Bar()->lTime.Caption()).substr(0, 7), "00:00:0");
            EXPECT_TRUE(Bar()->Style().excludedFromCapture);
            EXPECT_FALSE(Bar()->Style().activates);
        })
        .At(10s)
        .PressEscape()
        .At(15s)
        .Run();
    EXPECT_EQ(Bar(), nullptr);
}

TEST_F(CompanionTest, Bar_SaysInWords_ThatThereIsNoSound) {
    world.monitors.AddRight(1024, 768);
    Play().PressRecord().At(12s).Do([this] { EXPECT_EQ(Bar()->lState.Caption(), u"Recording, no sound!"); }).Run();
    Play().Do([this] { Level(50); }).At(1s).Do([this] { EXPECT_EQ(Bar()->lState.Caption(), u"Recording"); }).Run();
    Play().PressEscape().After(5s).Run();
}

TEST_F(CompanionTest, Bar_StandsBesideTheRegion_WhereThatLeavesRoom) {
    world.app.DeckOf(kDeck).width = 960;
    world.app.DeckOf(kDeck).height = 400;  // wider than the screen: bands above and below
    Play()
        .PressRecord()
        .At(8s)
        .Do([this] {
            ASSERT_NE(Bar(), nullptr);
            const ui::WindowPlace& place = Bar()->Place();
            EXPECT_LE(place.top + place.height, session.display.g_CaptureTop);
        })
        .PressEscape()
        .At(15s)
        .Run();
}

TEST_F(CompanionTest, Bar_DoesNotComeUp_WhereEverythingIsRecorded) {
    Play().PressRecord().At(8s).Do([this] { EXPECT_EQ(Bar(), nullptr); }).PressEscape().At(15s).Run();
}

TEST_F(CompanionTest, ShowOfARecordedDeck_SaysOnceThatItIsNotRecorded) {
    Record();
    NoteLines();
    Play().StartShow().At(2s).PressRight().At(4s).PressRight().At(12s).Run();
    EXPECT_EQ(lines, std::vector<std::string>{"This slide show is not being recorded. To record it, end it and choose "
                                              "Record in the Kestrum menu."});
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmAdvice")) << "it went by itself";
    Play().PressEscape().After(5s).Run();
}

TEST_F(CompanionTest, ShowThatIsRecorded_OrOfADeckNeverRecorded_SaysNothing) {
    NoteLines();
    Play().StartShow().At(2s).PressEscape().At(5s).Run();
    EXPECT_TRUE(lines.empty()) << "never recorded";
    Set(u"chkAutoRecord", u"1");
    Play().StartShow().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries().size(), 1U);
    EXPECT_TRUE(lines.empty()) << "recorded";
}

TEST_F(CompanionTest, ShowOfAnyDeck_SaysSo_WhereTheProgramWasStartedForIt) {
    session.Accompany(true);
    NoteLines();
    Play().StartShow().At(2s).PressEscape().At(5s).Run();
    EXPECT_EQ(lines.size(), 1U);
    world.power.keepsDisplayAwake = false;
    Record();
    EXPECT_EQ(lines.size(), 2U) << "it has taken the place of the one before";
}

// --- after ---------------------------------------------------------------------------------------------------------

TEST_F(CompanionTest, Card_TellsLengthSlidesAndSound) {
    const auto voice = world.loop.StartTimer(u"voice", 200, host::TimerReentry::Skipped, [this] { Level(75); });
    Play().PressRecord().At(10s).PressRight().At(20s).PressRight().At(70s).PressEscape().At(75s).Run();
    ASSERT_NE(Card(), nullptr);
    EXPECT_TRUE(Card()->IsVisible());
    EXPECT_EQ(Card()->lTitle.Caption(), u"lecture.ktr");
    EXPECT_EQ(host::ToUtf8(Card()->lLength.Caption()).substr(0, 5), "00:01");
    EXPECT_EQ(Card()->lSlides.Caption(), u"3");
    EXPECT_EQ(Card()->lSound.Caption(), u"Good");
    EXPECT_EQ(Card()->DefaultButton(), &Card()->cmdPlay);
}

TEST_F(CompanionTest, Card_IsAwaited_FromTheVeryEndOfTheShow) {
    Play().PressRecord().At(10s).PressEscape().Do([this] { EXPECT_TRUE(session.companion->HasCard()); }).Run();
    Play().At(1s).Do([this] { EXPECT_NE(Card(), nullptr); }).Run();
    Card()->PressEscape();
    EXPECT_FALSE(session.companion->HasCard());
    Set(u"chkShowAfter", u"0");
    Record();
    EXPECT_FALSE(session.companion->HasCard());
}

TEST_F(CompanionTest, Card_OfAContinuedLecture_TellsWhatWasAdded) {
    Record(70s);
    Record(30s);
    ASSERT_NE(Card(), nullptr);
    EXPECT_NE(Card()->lLength.Caption().find(u" more, 00:01:"), String::npos);
    EXPECT_EQ(Card()->lSlides.Caption(), u"1");
}

TEST_F(CompanionTest, Card_SaysThatNothingWasHeard) {
    Record();
    EXPECT_EQ(Card()->lSound.Caption(), u"Silent! The microphone heard nothing.");
}

TEST_F(CompanionTest, Card_PlaysAndShowsThePackage_AndClosesByEscape) {
    Record();
    Card()->Click(u"cmdPlay");
    Card()->Click(u"cmdFolder");
    EXPECT_EQ(world.processes.opened, std::vector<String>{kPackage});
    EXPECT_EQ(world.processes.shownInFolder, std::vector<String>{kPackage});
    EXPECT_TRUE(session.companion->HasCard());
    Card()->PressEscape();
    EXPECT_FALSE(session.companion->HasCard());
    ExpectAtRest();
}

TEST_F(CompanionTest, Card_WithoutAPlayerOrFileManager_SaysSo) {
    world.processes.desktopOpens = false;
    Record();
    Card()->Click(u"cmdPlay");
    Card()->Click(u"cmdFolder");
    ASSERT_EQ(Boxes().size(), 2U);
    EXPECT_NE(Boxes()[1].find("lecture.ktr"), std::string::npos);
}

TEST_F(CompanionTest, Card_PublishesTheLecture_ThroughTheCommand) {
    Record();
    world.presenter.Do(u"frmExportMp4", u"look", [&](ui::Form& form) {
        EXPECT_EQ(session.support.packagePath, kPackage);
        EXPECT_TRUE(session.companion->HasCard());
        form.CloseByUser();
    });
    Card()->Click(u"cmdPublish");
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    EXPECT_TRUE(session.companion->HasCard());
}

TEST_F(CompanionTest, Card_PublishesNothing_WhenAnotherPresentationIsInFront) {
    Record();
    world.app.Open(sim::Deck::Titled(u"/home/anna/talks/other.pptx", {u"One"}));
    Card()->Click(u"cmdPublish");
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].find("lecture.ktr"), std::string::npos);
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmExportMp4"));
}

TEST_F(CompanionTest, Card_SwitchedOff_DoesNotComeBack) {
    Record();
    Card()->Click(u"chkShowAfter");
    EXPECT_EQ(world.settings.Get(u"configure", u"chkShowAfter"), u"0");
    Card()->PressEscape();
    Record();
    EXPECT_EQ(Card(), nullptr);
}

TEST_F(CompanionTest, Card_GoesWhenTheNextShowBegins_AndWhenTheProgramEnds) {
    Record();
    Play().StartShow().At(2s).Do([this] { EXPECT_EQ(Card(), nullptr); }).PressEscape().At(5s).Run();
    Record();
    EXPECT_NE(Card(), nullptr);
    session.companion->Leave();
    EXPECT_EQ(Card(), nullptr);
}

TEST_F(CompanionTest, Card_DoesNotCome_AfterAFault_NorWhenNothingWasRecorded) {
    world.presenter.Click(u"frmMsgBox", u"cmdOK");
    Play().PressRecord().At(10s).EncoderReports(host::encoder_state::kDiskFull).At(20s).Run();
    EXPECT_EQ(Card(), nullptr) << "the message has told";
    world.box.AnswerAll();
    world.faults.FailCall(u"app.Run", 1, sim::Once);
    Play().PressRecord().At(5s).Run();
    EXPECT_EQ(Card(), nullptr);
}

TEST_F(CompanionTest, SessionWithoutAPerson_IsLeftAlone) {
    session.companion.reset();
    world.power.keepsDisplayAwake = false;
    NoteLines();
    Record();
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(Card(), nullptr);
    ExpectAtRest();
}

}  // namespace
}  // namespace kestrum
