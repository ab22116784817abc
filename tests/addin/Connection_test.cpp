// What the program does when its host connects and disconnects it.
#include "recording/LectureDesk.h"
#include "recording/modViewer.h"

namespace kestrum {
namespace {

using test::Lecture;

struct Connection : ::testing::Test {
    void PutTemplate() { world.fs.Put(u"/opt/kestrum/default.ksp", test::InstallFile("default.ksp")); }
    sim::World world;
};

TEST_F(Connection, Connects_WithTitleFoldersAndTheRequestToStayAwake) {
    PutTemplate();
    world.fs.Remove(u"/tmp/user");
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(session.support.applicationTitle, u"Kestrum for PowerPoint");
    EXPECT_EQ(session.support.g_HostMode, u"PPT");
    EXPECT_EQ(session.support.g_OsVersion, 63);
    EXPECT_EQ(session.addIn.OfficeMajor, 16);
    EXPECT_TRUE(session.addIn.UseRibbon);
    EXPECT_TRUE(world.fs.FolderExists(u"/tmp/user"));
    EXPECT_EQ(session.support.g_AppDataFolder, u"/home/anna/.local/share/Larkspin");
    EXPECT_TRUE(world.fs.FolderExists(session.support.g_AppDataFolder));
    EXPECT_TRUE(session.addin.g_DefaultProjectDoc);
    EXPECT_EQ(world.power.states, std::vector<std::uint32_t>{0x80000003});
    EXPECT_EQ(session.display.g_MaxResWidth, 1920);
    EXPECT_EQ(world.windows.OwnCount(u"frmViewer"), 1);
    EXPECT_TRUE(world.presenter.OnScreen().empty()) << "the driver form is never shown";
}

TEST_F(Connection, DataFolder_LiesUnderTempWithoutAppData) {
    world.shell.environment.erase(u"appdata");
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(session.support.g_AppDataFolder, u"/tmp/user/Larkspin");
}

TEST_F(Connection, DataFolder_LiesUnderTemp_WhereTheDataFolderDoesNotExist) {
    world.fs.Remove(u"/home/anna/.local/share");
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(session.support.g_AppDataFolder, u"/tmp/user/Larkspin");
    EXPECT_TRUE(world.fs.FolderExists(u"/tmp/user/Larkspin"));
}

TEST_F(Connection, ClearsTheFlagsOfARecording) {
    Session session(world.host());
    session.recording.g_RecordRequested = true;
    session.recording.g_Recording = true;
    session.Connect();
    EXPECT_FALSE(session.recording.g_RecordRequested);
    EXPECT_FALSE(session.recording.g_Recording);
}

TEST_F(Connection, SystemVersion_IsTheSystemsCode) {
    world.shell.osVersionCode = 62;
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(session.support.g_OsVersion, 62);
}

TEST_F(Connection, TemplateThatIsMissing_IsNotReported_AndIsTriedAgain) {
    Session session(world.host());
    session.Connect();
    EXPECT_FALSE(session.addin.g_DefaultProjectDoc);
    EXPECT_TRUE(world.box.Shown().empty());
    PutTemplate();
    session.Connect();
    EXPECT_TRUE(session.addin.g_DefaultProjectDoc);
}

TEST_F(Connection, VersionThatIsNoNumber_LeavesTheOldestSurface_AndEverythingElseRuns) {
    world.app.version = u"beta";
    Session session(world.host(), &world.commandBars);
    session.Connect();
    EXPECT_EQ(session.addIn.OfficeMajor, 0);
    EXPECT_FALSE(session.addIn.UseRibbon);
    EXPECT_EQ(world.commandBars.standard.controls.size(), 1U);
    EXPECT_EQ(world.power.states, std::vector<std::uint32_t>{0x80000003});
}

TEST_F(Connection, OldHost_HasNoRibbon) {
    world.app.version = u"11.0";
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(session.addIn.OfficeMajor, 11);
    EXPECT_FALSE(session.addIn.UseRibbon);
}

TEST_F(Connection, StaleMarker_IsDisarmedWithoutAPresentation_AndItsTimeStays) {
    world.settings.Set(u"tokens\\PowerPoint", u"recording", u"1");
    world.settings.Set(u"tokens\\PowerPoint", u"project", u"/a.ktr");
    world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"77");
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(world.settings.Get(u"tokens\\PowerPoint", u"recording"), u"0");
    EXPECT_EQ(world.settings.Get(u"tokens\\PowerPoint", u"project"), u"");
    EXPECT_EQ(world.settings.Get(u"tokens\\PowerPoint", u"touchtime"), u"77");
}

TEST_F(Connection, HostThatCannotCountItsPresentations_LeavesTheMarkerAlone) {
    // A command without an office: the recording that set the marker may well be alive in one.
    world.settings.Set(u"tokens\\PowerPoint", u"recording", u"1");
    world.faults.FailCall(u"app.PresentationCount", 1, sim::Once);
    Session session(world.host());
    session.Connect();
    EXPECT_FALSE(world.faults.Injected().empty());
    EXPECT_EQ(world.settings.Get(u"tokens\\PowerPoint", u"recording"), u"1");
}

TEST_F(Connection, MarkerWithAPresentationOpen_IsLeftAlone_TheHeartbeatDisarmsIt) {
    world.app.Open(sim::Deck::Titled(u"/home/anna/a.pptx", {u"One"}));
    world.settings.Set(u"tokens\\PowerPoint", u"recording", u"1");
    world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"1000000");
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(world.settings.Get(u"tokens\\PowerPoint", u"recording"), u"1");
    EXPECT_TRUE(modViewer::IsRecordingLive(session.c));
    world.loop.Advance(60000);
    EXPECT_FALSE(modViewer::IsRecordingLive(session.c));
}

TEST_F(Connection, Heartbeat_RunsAlways_AndWritesOnlyWhileRecording) {
    Session session(world.host());
    session.Connect();
    EXPECT_EQ(world.loop.TimerCount(u"frmViewer.tmrTouch"), 1);
    world.loop.Advance(60000);
    EXPECT_EQ(world.settings.Get(u"tokens\\PowerPoint", u"touchtime"), u"");
}

TEST_F(Connection, Disconnection_TakesTheFormDown_LeavesTheFolder_AndLetsTheSystemSleep) {
    Session session(world.host());
    session.Connect();
    session.Disconnect();
    EXPECT_EQ(world.windows.OwnCount(u"frmViewer"), 0);
    EXPECT_EQ(world.loop.TimerCount(u"frmViewer.tmrTouch"), 0);
    EXPECT_EQ(world.fs.CurrentFolder(), u"/tmp/user");
    EXPECT_EQ(world.power.states.back(), 0x80000000U);
}

TEST_F(Connection, AnyFailingStep_IsSkipped_AndTheNextRuns) {
    int runs = sim::FaultSweep(u"*", [](const auto& arm) {
        sim::World broken;
        Session session(broken.host());
        arm(broken.faults);
        session.Connect();
        EXPECT_EQ(broken.power.states, std::vector<std::uint32_t>{0x80000003});
        EXPECT_TRUE(broken.box.Shown().empty());
        session.Disconnect();
        EXPECT_EQ(broken.power.states.back(), 0x80000000U);
    });
    EXPECT_GT(runs, 5);
}

TEST_F(Lecture, SessionThatEndsInTheMiddleOfARecording_LeavesNothingHanging) {
    // The host is gone without a word: what was recorded is in the package, for the recovery at the next opening.
    auto other = std::make_unique<test::LectureDesk>();
    other->Play().PressRecord().At(std::chrono::seconds(5)).GoToSlide(2).At(std::chrono::seconds(8)).Run();
    EXPECT_TRUE(other->world.ksLib.Running());
    auto package = other->world.ksLib.Get(kPackage);
    EXPECT_NE(package->journal.find("Waves"), std::string::npos);
    other.reset();
}

}  // namespace
}  // namespace kestrum
