// The Record command's checks, the guard sequence, and the MP4 command.
#include "recording/LectureDesk.h"
#include "support/modGlobal.h"

namespace kestrum {
namespace {

using namespace std::chrono_literals;
using test::Lecture;
using Texts = std::vector<std::string>;

// --- Record --------------------------------------------------------------------------------------------------------

TEST_F(Lecture, Record_RefusesAFinalPresentation) {
    world.app.DeckOf(kDeck).markedFinal = true;
    Play().PressRecord().At(1s).Run();
    EXPECT_EQ(Boxes(),
              Texts{"Please check whether this presentation is marked as final. If it is, remove Mark as Final "
                    "from it!"});
    EXPECT_FALSE(world.transcript.Has(u"show begin"));
}

TEST_F(Lecture, Record_WantsExactlyOneSelectedSlide) {
    for (const std::vector<std::int32_t>& selection : {std::vector<std::int32_t>{}, std::vector<std::int32_t>{2, 3}}) {
        world.app.Select(selection);
        Play().PressRecord().At(1s).Run();
    }
    EXPECT_EQ(world.box.Shown().size(), 2U);
    EXPECT_EQ(world.box.Shown()[0].text, world.box.Shown()[1].text);
    EXPECT_FALSE(world.transcript.Has(u"show begin"));
}

TEST_F(Lecture, Record_ShowsWhyTheHostRefusedTheShow) {
    world.faults.FailCall(u"app.Run", 1, sim::Once);
    Play().PressRecord().At(1s).Run();
    ASSERT_EQ(world.box.Shown().size(), 1U);
    EXPECT_EQ(world.box.Shown()[0].title, u"Record");
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmTopmost"));
}

TEST_F(Lecture, Record_AsksForTheVolumeOfAFreshProject_AndCancelStartsNothing) {
    Set(u"chkSetVolBefRec", u"1");
    world.presenter.Click(u"frmVolSetting", u"cmdCancel");
    Play().PressRecord().At(5s).Run();
    EXPECT_FALSE(world.transcript.Has(u"show begin"));
    world.presenter.Click(u"frmVolSetting", u"cmdRec");
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();  // holds media now: no question
    EXPECT_EQ(StoredEntries().size(), 2U);
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

TEST_F(Lecture, Record_AsksForASpeakersShow) {
    Play().PressRecord().At(5s).PressEscape().At(9s).Run();
    EXPECT_EQ(world.app.showType, 1);
}

TEST_F(Lecture, SecondPressWhileTheVolumeDialogIsUp_IsIgnored) {
    Set(u"chkSetVolBefRec", u"1");
    world.presenter.Do(u"frmVolSetting", u"press Record again", [this](ui::Form&) { world.onCommand(u"rec"); });
    world.presenter.Click(u"frmVolSetting", u"cmdCancel");
    Play().PressRecord().At(5s).Run();
    EXPECT_FALSE(world.transcript.Has(u"show begin"));
}

// --- the entrance --------------------------------------------------------------------------------------------------

TEST_F(Lecture, NoCommandRuns_WhileTheSiblingHasTheProject) {
    world.settings.Set(u"tokens\\Larkspin", u"project", kPackage);
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", u"1000000");
    Play().PressRecord().At(1s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_FALSE(world.transcript.Has(u"show begin"));
}

TEST_F(Lecture, UnknownCommand_DoesNothing) {
    Play().Command(u"mnuNoSuch").At(1s).Run();
    EXPECT_TRUE(Boxes().empty());
    EXPECT_TRUE(world.presenter.Transcript().empty());
}

// --- the guard sequence --------------------------------------------------------------------------------------------

struct Commands : test::Lecture {
    void RecordTenSeconds() { Play().PressRecord().At(10s).PressEscape().At(15s).Run(); }
};

TEST_F(Commands, NothingRecorded_IsTold_AndNoFolderStays) {
    Play().Command(u"mnuMP4").At(1s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_TRUE(WorkFolders().empty());
    EXPECT_FALSE(session.addIn.CommandBusy);
}

TEST_F(Commands, PresentationNeverSaved_EndsWithItsMessage_AndNoFolder) {
    world.app.Open(sim::Deck::Titled(u"Presentation1", {u"One"}));
    Play().Command(u"mnuMP4").At(1s).Run();
    EXPECT_EQ(world.box.Shown().size(), 1U);
    EXPECT_TRUE(WorkFolders().empty());
}

TEST_F(Commands, Mp4Command_OpensItsDialogOnTheOpenProject_AndCleansUp) {
    RecordTenSeconds();
    bool unpacked = false;
    world.presenter.Do(u"frmExportMp4", u"look", [&](ui::Form& form) {
        unpacked = world.fs.FileExists(session.support.workFolder + u"/project.ksp");
        world.onCommand(u"mnuMP4");  // a second click while the dialog is up
        form.CloseByUser();
    });
    Play().Command(u"mnuMP4").At(5s).Run();
    EXPECT_TRUE(unpacked);
    EXPECT_TRUE(WorkFolders().empty());
    EXPECT_FALSE(session.addIn.CommandBusy);
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

TEST_F(Commands, PackageOfAnotherGeneration_StopsTheCommand_AndNoFolderStays) {
    RecordTenSeconds();
    auto package = world.ksLib.Get(kPackage);
    package->formatVersion = 6 * 256;
    world.ksLib.Put(kPackage, *package);
    world.box.AnswerAll();
    Play().Command(u"mnuMP4").At(5s).Run();
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmExportMp4"));
    EXPECT_TRUE(WorkFolders().empty());
    EXPECT_FALSE(session.addIn.CommandBusy);
}

TEST_F(Commands, LengthOfZero_EndsTheMp4CommandThroughItsErrorPath) {
    RecordTenSeconds();
    world.box.AnswerAll();
    // The library stops answering once the project is open.
    bool opened = false;
    world.faults.FailCall(u"ksLib.GetLength", 1, sim::ForEver);
    Play().Command(u"mnuMP4").At(5s).Run();
    opened = session.c.forms.IsFormLoaded(u"frmExportMp4");
    EXPECT_FALSE(opened);
    EXPECT_FALSE(world.box.Shown().empty());
    EXPECT_FALSE(session.addIn.CommandBusy);
    EXPECT_TRUE(WorkFolders().empty());
}

TEST_F(Commands, VeryLongRecording_IsTooBigForMp4_BeforeTheDialogOpens) {
    RecordTenSeconds();
    // 1280x720 is taken for 1410 kbit/s; the limit falls below that at about three hours. The source must be as rich.
    auto package = world.ksLib.Get(kPackage);
    package->lengthMs = 4 * 3600 * 1000;
    world.ksLib.Put(kPackage, *package);
    world.fs.SetReportedSize(kPackage, 1900000000);
    world.box.AnswerAll();
    Play().Command(u"mnuMP4").At(5s).Run();
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmExportMp4"));
    EXPECT_FALSE(world.box.Shown().empty());
    // A poor source of the same length is never taken for more than five times its own rate.
    world.fs.SetReportedSize(kPackage, 300000000);
    bool opened = false;
    world.presenter.Do(u"frmExportMp4", u"look", [&](ui::Form& form) {
        opened = true;
        form.CloseByUser();
    });
    Play().Command(u"mnuMP4").At(5s).Run();
    EXPECT_TRUE(opened);
}

TEST_F(Commands, Configure_OfAPresentationNeverRecorded_OpensItsSettings_AndStoresThemInANewPackage) {
    world.presenter.Do(u"frmConfig", u"look", [this](ui::Form&) {
        EXPECT_TRUE(world.fs.FolderExists(session.support.workFolder));
        EXPECT_TRUE(session.addIn.CommandBusy);
    });
    world.presenter.Select(u"frmConfig", u"cmbAudioQuality", 2).Click(u"frmConfig", u"cmdSave");
    session.addIn.NotesButton(u"mnuConfigure");
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    ASSERT_TRUE(world.ksLib.Get(kPackage));
    EXPECT_NE(world.ksLib.Get(kPackage)->stored.at("project").find(">96<"), std::string::npos);
    EXPECT_FALSE(world.fs.FolderExists(session.support.workFolder));
    EXPECT_FALSE(session.addIn.CommandBusy);
}

TEST_F(Commands, Configure_Cancelled_LeavesNoPackageAndNoFolder) {
    world.presenter.PressEscape(u"frmConfig");
    session.addIn.NotesButton(u"mnuConfigure");
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    EXPECT_FALSE(world.fs.FolderExists(session.support.workFolder));
    EXPECT_FALSE(session.addIn.CommandBusy);
}

TEST_F(Commands, Configure_WithoutAnyLecture_ShowsThePreferencesAlone) {
    session.support.projectSource = u"KTR";
    session.support.packagePath.clear();
    const auto before = world.fs.All();
    world.presenter.Click(u"frmConfig", u"chkSkipPres").Click(u"frmConfig", u"cmdSave");
    session.addIn.NotesButton(u"mnuConfigure");
    EXPECT_EQ(world.settings.Get(u"configure", u"chkSkipPres"), u"1");
    EXPECT_EQ(world.fs.All(), before);
}

TEST_F(Commands, Configure_WaitsForTheSiblingThatHoldsTheDevices) {
    world.settings.Set(u"tokens\\Larkspin", u"recording", u"1");
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", ToText(modGlobal::GetPositiveTick(world.loop)));
    session.addIn.NotesButton(u"mnuConfigure");
    EXPECT_EQ(Boxes().size(), 1U);
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmConfig"));
}

TEST_F(Commands, Devices_OfALectureNeverRecorded_MakeItsPackage) {
    world.presenter.Select(u"frmDevice", u"cmbAudioQuality", 1).After(200).Click(u"frmDevice", u"cmdSave");
    session.addIn.NotesButton(u"mnuDevice");
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    ASSERT_TRUE(world.ksLib.Get(kPackage));
    EXPECT_NE(world.ksLib.Get(kPackage)->stored.at("project").find(">64<"), std::string::npos);
    EXPECT_FALSE(world.fs.FolderExists(session.support.workFolder));
    EXPECT_FALSE(session.addIn.CommandBusy);
}

TEST_F(Commands, Devices_OfAnEmptyPackage_BeginWithThePreferencesOfTheMoment) {
    world.presenter.Select(u"frmDevice", u"cmbAudioQuality", 0).After(200).Click(u"frmDevice", u"cmdSave");
    session.addIn.NotesButton(u"mnuDevice");
    world.settings.Set(u"configure", u"videoSize", u"320x240");
    world.presenter.Do(u"frmDevice", u"look", [this](ui::Form& form) {
        EXPECT_EQ(session.project.g_Project.videoSize, u"320x240");
        form.CloseByUser();
    });
    session.addIn.NotesButton(u"mnuDevice");
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
}

TEST_F(Commands, Devices_OfARecordedLecture_LeaveItsMediaAlone) {
    RecordTenSeconds();
    const std::int32_t length = world.ksLib.GetLength(kPackage);
    world.presenter.Click(u"frmDevice", u"cmdSave").After(200);
    session.addIn.NotesButton(u"mnuDevice");
    EXPECT_EQ(world.ksLib.GetLength(kPackage), length);
    EXPECT_EQ(StoredEntries(), Texts{"0 Welcome"});
}

TEST_F(Commands, Devices_WithoutAnyLecture_AreThePreferencesAlone) {
    session.support.projectSource = u"KTR";
    session.support.packagePath.clear();
    const auto before = world.fs.All();
    world.presenter.Click(u"frmDevice", u"cmdSave").After(200);
    session.addIn.NotesButton(u"mnuDevice");
    EXPECT_EQ(world.settings.Get(u"configure", u"audioDevice"), u"Microphone");
    EXPECT_EQ(world.fs.All(), before);
}

TEST_F(Commands, Devices_WaitForTheSiblingThatHoldsThem) {
    world.settings.Set(u"tokens\\Larkspin", u"recording", u"1");
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", ToText(modGlobal::GetPositiveTick(world.loop)));
    session.addIn.NotesButton(u"mnuDevice");
    EXPECT_EQ(Boxes().size(), 1U);
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmDevice"));
}

TEST_F(Commands, ChangeResolution_NeedsNoLecture_AndOpensNone) {
    session.support.packagePath.clear();
    world.monitors.SetSingle(1920, 1080);
    world.presenter.Click(u"frmChangeRes", u"optRcmdRes").Click(u"frmChangeRes", u"cmdExit");
    const auto before = world.fs.All();
    session.addIn.NotesButton(u"mnuChangeRes");
    EXPECT_TRUE(world.presenter.LeftOverActs().empty());
    EXPECT_EQ(world.monitors.CurrentMode(0)->width, 1280);
    EXPECT_EQ(world.fs.All(), before);
}

TEST_F(Commands, ChangeResolution_WaitsForARecordingToEnd) {
    Play().PressRecord().At(5s).Command(u"mnuChangeRes").PressEscape().At(9s).Run();
    EXPECT_EQ(Boxes().size(), 1U);
    EXPECT_FALSE(session.c.forms.IsFormLoaded(u"frmChangeRes"));
}

TEST_F(Commands, AnyFailingCall_LeavesNoFolderAndNoBusyFlag) {
    sim::FaultSweep(u"fs.*", [](const auto& arm) {
        test::LectureDesk desk;
        desk.Play().PressRecord().At(10s).PressEscape().At(15s).Run();
        desk.world.box.AnswerAll();
        desk.world.presenter.Do(u"frmExportMp4", u"close", [](ui::Form& form) { form.CloseByUser(); });
        auto package = desk.world.ksLib.Get(test::LectureDesk::kPackage);
        arm(desk.world.faults);
        desk.Play().Command(u"mnuMP4").At(5s).Run();
        EXPECT_FALSE(desk.session.addIn.CommandBusy);
        EXPECT_EQ(desk.world.ksLib.Get(test::LectureDesk::kPackage)->lengthMs, package->lengthMs);
    });
}

}  // namespace
}  // namespace kestrum
