#include "project/modProject.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"
#include "project/RecentProjects.h"
#include "support/modConfig.h"

namespace kestrum {
namespace {

using host::BoxAnswer;
using test::InstallFile;
using test::Item;
using test::ProjectText;
using test::ProjectWorld;
using test::ReplacedOnce;
using Texts = std::vector<String>;

constexpr char16_t kDeck[] = u"/home/anna/talks/deck.pptx";

class ModProjectTest : public testing::Test {
  protected:
    void OpenDeck(const String& fullName = kDeck) {
        fs.Put(fullName, "pptx");
        w.world.app.Open(sim::Deck::Titled(fullName, {u"one"}));
    }
    bool Open(bool isNew) {
        bool continued = true;
        const bool opened = modProject::OpenProject(w.c, isNew, continued);
        EXPECT_FALSE(continued);
        return opened;
    }
    /// A text of the language file, so that boxes with keyed texts can be told apart.
    void PutTexts(const std::string& section, const std::string& key, const std::string& text) {
        fs.Put(ProjectWorld::InInstall(u"res.xml"),
               "<r><s name=\"" + section + "\"><e name=\"" + key + "\">" + text + "</e></s></r>");
    }
    void PutSnapshot(const std::string& text) { fs.Put(Snapshot(), text); }
    static String Snapshot() { return String(ProjectWorld::kPackage) + u"._tmp/media.rec.tmp"; }
    String InWork(const String& name) const { return w.support.workFolder + u"/" + name; }

    ProjectWorld w;
    sim::FileSystem& fs = w.world.fs;
    sim::MessageBox& box = w.world.box;
};

// --- LocateProject -------------------------------------------------------------------------------------------------

TEST_F(ModProjectTest, Locate_OfADeckNeverSaved_TellsSoAndMakesNoScratchFolder) {
    PutTexts("frmCommon", "savePpt", "Save it first");
    w.world.app.Open(sim::Deck::Titled(u"Presentation1", {u"one"}));
    EXPECT_FALSE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.Boxes(), Texts{u"Save it first"});
    EXPECT_EQ(w.support.workFolder, u"");
    EXPECT_EQ(w.support.projectFileName, u"");
    for (const String& path : fs.All()) EXPECT_EQ(path.find(u"_ksproj_"), String::npos);
}

TEST_F(ModProjectTest, Locate_WithoutAPresentation_TellsSo) {
    EXPECT_FALSE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.Boxes().size(), 1U);
}

TEST_F(ModProjectTest, Locate_OfASavedDeck_SetsThePathsAndMakesANewScratchFolderEachTime) {
    OpenDeck();
    ASSERT_TRUE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.support.packagePath, ProjectWorld::kPackage);
    EXPECT_EQ(w.support.packageFolder, ProjectWorld::kFolder);
    EXPECT_EQ(w.support.projectFileName, u"project.ksp");
    const String first = w.support.workFolder;
    EXPECT_EQ(first.find(u"/tmp/user/_ksproj_"), 0U);
    EXPECT_TRUE(fs.FolderExists(first));
    ASSERT_TRUE(modProject::LocateProject(w.c));
    EXPECT_NE(w.support.workFolder, first);
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(ModProjectTest, Locate_ForAnotherProjectSource_LeavesThePathsAlone) {
    w.support.projectSource = u"KTR";
    w.support.packagePath = u"/x/y.ktr";
    EXPECT_TRUE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.support.packagePath, u"/x/y.ktr");
}

class UpgradeTest : public ModProjectTest {
  protected:
    void PutLegacy(bool withMedia = true) {
        OpenDeck();
        fs.Put(u"/home/anna/talks/deck.ksp/project.ksp", ReplacedOnce(InstallFile("default.ksp"), "8.0", "6.1"));
        if (!withMedia) return;
        sim::Package media;
        media.ectState = 0;
        w.world.ksLib.Put(u"/home/anna/talks/deck.ksp/media.ks", media);
    }
    void PutConverter(bool works = true) {
        fs.Put(ProjectWorld::InInstall(u"ksFmtCvt"), "program");
        w.world.processes.programs[u"ksFmtCvt"] = {1000, 0, [this, works](const std::vector<String>& arguments) {
                                                       if (works) fs.Put(arguments.at(1), "converted");
                                                       return std::optional<std::int32_t>();
                                                   }};
    }
};

TEST_F(UpgradeTest, LegacyFolderWithoutMedia_IsNotOfferedForUpgrade) {
    PutLegacy(false);
    EXPECT_TRUE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(UpgradeTest, LegacyFolderBesideAPackage_IsIgnored) {
    PutLegacy();
    w.PutPackage(ProjectText(""), 1000, {0});
    EXPECT_TRUE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(UpgradeTest, AnyAnswerButYes_EndsWithFalse) {
    PutLegacy();
    box.Answer(BoxAnswer::No);
    EXPECT_FALSE(modProject::LocateProject(w.c));
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_EQ(box.Shown()[0].title, u"Version Incompatible");
    EXPECT_TRUE(w.world.processes.started.empty());
}

TEST_F(UpgradeTest, Yes_ConvertsTheFolderIntoThePackage) {
    PutLegacy();
    PutConverter();
    box.Answer(BoxAnswer::Yes);
    EXPECT_TRUE(modProject::LocateProject(w.c));
    ASSERT_EQ(w.world.processes.started.size(), 1U);
    EXPECT_EQ(w.world.processes.started[0]->arguments, (Texts{u"/home/anna/talks/deck.ksp", ProjectWorld::kPackage}));
    EXPECT_EQ(w.support.packagePath, ProjectWorld::kPackage);
}

TEST_F(UpgradeTest, AConverterThatMakesNoPackage_EndsWithFalse) {
    PutLegacy();
    PutConverter(false);
    box.Answer(BoxAnswer::Yes);
    EXPECT_FALSE(modProject::LocateProject(w.c));
}

TEST_F(UpgradeTest, MediaThatCannotBeOpened_EndsWithFalse) {
    PutLegacy();
    fs.Put(u"/home/anna/talks/deck.ksp/media.ks", "no media");
    box.Answer(BoxAnswer::Yes);
    EXPECT_FALSE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.Boxes().back(), u"Failed to get encryption state! (open file error)");
    EXPECT_TRUE(w.world.processes.started.empty());
}

TEST_F(UpgradeTest, AnyAnswerButYes_LeavesNoProjectFileName) {
    PutLegacy();
    w.support.projectFileName = u"project.ksp";
    box.Answer(BoxAnswer::No);
    EXPECT_FALSE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.support.projectFileName, u"");
}

TEST_F(UpgradeTest, AMissingConverter_IsToldByTheProcessWindow) {
    PutLegacy();
    box.Answer(BoxAnswer::Yes);
    box.Answer(BoxAnswer::Ok);
    EXPECT_FALSE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.Boxes().back(),
              u"Execution failed because \"" + ProjectWorld::InInstall(u"ksFmtCvt") + u"\" does not exist!");
}

class LegacyEncryptionTest : public UpgradeTest {
  protected:
    void PutEncrypted(const std::string& version) {
        PutLegacy();
        fs.Put(u"/home/anna/talks/deck.ksp/project.ksp", ReplacedOnce(InstallFile("default.ksp"), "8.0", version));
        SetState(1);
        PutConverter();
        fs.Put(ProjectWorld::InInstall(u"ksECT"), "program");
        box.Answer(BoxAnswer::Yes);
    }
    void SetState(std::int32_t state) {
        sim::Package media;
        media.ectState = state;
        w.world.ksLib.Put(kMedia, media);
    }
    static constexpr char16_t kMedia[] = u"/home/anna/talks/deck.ksp/media.ks";
};

TEST_F(LegacyEncryptionTest, EncryptedMediaOfGenerationsSixAndSeven_AreDecryptedFirst) {
    for (const char* version : {"6.4", "7.0"}) {
        SCOPED_TRACE(version);
        fs.Remove(ProjectWorld::kPackage);
        PutEncrypted(version);
        w.world.processes.programs[u"ksECT"] = {1000, 0, [&](const std::vector<String>& arguments) {
                                                    EXPECT_EQ(arguments, Texts{kMedia});
                                                    SetState(0);
                                                    return std::optional<std::int32_t>();
                                                }};
        EXPECT_TRUE(modProject::LocateProject(w.c));
        const auto& started = w.world.processes.started;
        ASSERT_GE(started.size(), 2U);
        EXPECT_EQ(started[started.size() - 2]->program, u"ksECT");
        EXPECT_EQ(started.back()->program, u"ksFmtCvt");
    }
}

TEST_F(LegacyEncryptionTest, MediaThatStayEncrypted_EndTheUpgrade) {
    PutEncrypted("7.0");
    w.world.processes.programs[u"ksECT"] = {1000, 1, nullptr};
    EXPECT_FALSE(modProject::LocateProject(w.c));
    EXPECT_EQ(w.world.processes.started.size(), 1U);
    EXPECT_FALSE(fs.FileExists(ProjectWorld::kPackage));
}

TEST_F(LegacyEncryptionTest, OtherGenerations_AreNotAsked) {
    PutEncrypted("5.0");
    EXPECT_TRUE(modProject::LocateProject(w.c));
    ASSERT_EQ(w.world.processes.started.size(), 1U);
    EXPECT_EQ(w.world.processes.started[0]->program, u"ksFmtCvt");
}

// --- OpenProject ---------------------------------------------------------------------------------------------------

TEST_F(ModProjectTest, Open_OfANewProject_CopiesTheTemplateAndAppliesThePlayerFiles) {
    ASSERT_TRUE(Open(true));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(w.project.itemCount, 0);
    for (const char16_t* name : {u"project.ksp", u"index.html", u"ksc.js", u"photo.gif", u"icons/cursor.gif"})
        EXPECT_TRUE(fs.FileExists(InWork(name))) << host::ToUtf8(name);
    EXPECT_EQ(w.world.ksLib.IsEmptyProject(ProjectWorld::kPackage), 1) << "the files are stored in a package";
}

TEST_F(ModProjectTest, Open_OfANewProject_TakesTheWebcamSizeOfTheSettings) {
    modConfig::SaveSetting(w.c, u"configure", u"videoSize", u"320x240");
    ASSERT_TRUE(Open(true));
    EXPECT_NE(fs.Bytes(InWork(u"project.ksp")).find("<size>320x240</size>"), std::string::npos);
}

TEST_F(ModProjectTest, Open_OfANewProjectOfAnotherSource_TakesItsTitleFromThePackage) {
    w.support.projectSource = u"KTR";
    w.support.packagePath = u"/home/anna/talks/my talk.KTR.ktr";
    ASSERT_TRUE(Open(true));
    EXPECT_EQ(w.project.g_Project.title, u"my talk");
    EXPECT_NE(fs.Bytes(InWork(u"project.ksp")).find("<title>my talk</title>"), std::string::npos);
}

TEST_F(ModProjectTest, Open_OfAProject_UnpacksAndLoadsIt) {
    w.PutPackage(ProjectText(Item("one", "0") + Item("two", "5000")), 60000, {0, 5000});
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
    EXPECT_EQ(w.project.itemCount, 2);
}

TEST_F(ModProjectTest, Open_LetsTheProjectsOwnPhotoAndCursorWin) {
    w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(fs.Bytes(InWork(u"photo.gif")), "own photo");
    EXPECT_EQ(fs.Bytes(InWork(u"icons/cursor.gif")), "own cursor");
    EXPECT_FALSE(fs.FileExists(InWork(u"cursor.gif")));
    EXPECT_EQ(w.world.ksLib.Get(ProjectWorld::kPackage)->stored.at("cursor"), "own cursor");
}

TEST_F(ModProjectTest, Open_MovesThePhotoToTheNameThatTheProjectGivesIt) {
    w.PutPackage(ReplacedOnce(ProjectText(Item("one", "0")), ">photo.gif<", ">me.gif<"), 60000, {0});
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(fs.Bytes(InWork(u"me.gif")), "own photo");
    EXPECT_EQ(w.world.ksLib.Get(ProjectWorld::kPackage)->stored.at("photo"), "own photo");
}

TEST_F(ModProjectTest, Open_OfAPhotoNameThatLeadsElsewhere_StaysInTheScratchFolder) {
    fs.Put(u"/tmp/user/victim", "precious");
    w.PutPackage(ReplacedOnce(ProjectText(Item("one", "0")), ">photo.gif<", ">../victim<"), 60000, {0});
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(fs.Bytes(u"/tmp/user/victim"), "precious");
    EXPECT_EQ(fs.Bytes(InWork(u"victim")), "own photo");
}

TEST_F(ModProjectTest, Open_OfAnUnknownTemplate_UsesTheDefaultOne) {
    w.PutPackage(ReplacedOnce(ProjectText(Item("one", "0")), ">default<", ">gone<"), 60000, {0});
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(w.project.g_Project.template_, u"default");
    EXPECT_NE(w.StoredProject().find("<template>default</template>"), std::string::npos);
}

TEST_F(ModProjectTest, Open_RemovesTheTemplatesPreviewPictures) {
    fs.Put(ProjectWorld::InInstall(u"template/default/index.jpg"), "x");
    fs.Put(ProjectWorld::InInstall(u"template/default/pic.jpg"), "x");
    ASSERT_TRUE(Open(true));
    EXPECT_FALSE(fs.FileExists(InWork(u"index.jpg")));
    EXPECT_FALSE(fs.FileExists(InWork(u"pic.jpg")));
}

TEST_F(ModProjectTest, Open_WithPlayerFilesInPlace_DoesNotApplyThemAgain) {
    fs.Put(InWork(u"index.html"), "kept");
    ASSERT_TRUE(Open(true));
    EXPECT_EQ(fs.Bytes(InWork(u"index.html")), "kept");
}

TEST_F(ModProjectTest, Open_InAFolderWithoutWritePermission_TellsSo) {
    PutTexts("frmNewProject", "msgReadOnly", "No permission");
    fs.SetUnwritable(ProjectWorld::kFolder, true);
    EXPECT_FALSE(Open(true));
    EXPECT_EQ(w.Boxes(), Texts{u"No permission"});
}

TEST_F(ModProjectTest, Open_WithLessThan100MegabytesFree_TellsTheNumber) {
    PutTexts("frmNewProject", "msgDiskSpace", "Free space");
    fs.AddDrive(ProjectWorld::kFolder, host::DriveType::Fixed, 99LL << 20);
    EXPECT_FALSE(Open(true));
    EXPECT_EQ(w.Boxes(), Texts{u"Free space: 99MB"});
}

TEST_F(ModProjectTest, Open_WithExactly100MegabytesFree_Passes) {
    fs.AddDrive(ProjectWorld::kFolder, host::DriveType::Fixed, 100LL << 20);
    EXPECT_TRUE(Open(true));
}

TEST_F(ModProjectTest, Open_OnANetworkPath_PassesTheSpaceTestWithoutLooking) {
    w.support.packageFolder = u"//server/talks";
    w.support.packagePath = u"//server/talks/deck.ktr";
    fs.AddDrive(u"//server/talks", host::DriveType::Network, 50LL << 20);
    EXPECT_TRUE(Open(true));
}

TEST_F(ModProjectTest, Open_MakesAMissingScratchFolder) {
    fs.Remove(ProjectWorld::kWork);
    EXPECT_TRUE(Open(true));
}

TEST_F(ModProjectTest, Open_OfAPackageWithoutAProjectFile_TellsSo) {
    fs.Put(ProjectWorld::kPackage, "not a package");
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{u"Verify project error!"});
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), "not a package");
}

TEST_F(ModProjectTest, Open_OfANewerVersion_AsksForAnUpgrade) {
    w.PutPackage(ReplacedOnce(ProjectText(Item("one", "0")), "8.0", "9.0"), 60000, {0});
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{u"Incompatible project version! Please upgrade your Kestrum!"});
}

TEST_F(ModProjectTest, Open_OfAnOlderVersion_IsFalseAndSilent) {
    w.PutPackage(ReplacedOnce(ProjectText(Item("one", "0")), "8.0", "7.5"), 60000, {0});
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(ModProjectTest, Open_OfVersionTen_CountsAsOne) {
    w.PutPackage(ReplacedOnce(ProjectText(Item("one", "0")), "8.0", "10.0"), 60000, {0});
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(ModProjectTest, Open_OfAnUnreadableVersion_TellsSo) {
    w.PutPackage(ReplacedOnce(ProjectText(""), "8.0", "x"), 60000, {0});
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{u"Unrecognized project version!"});
}

TEST_F(ModProjectTest, Open_WithoutTheTemplateFile_TellsThatTheVersionIsUnknown) {
    fs.Remove(ProjectWorld::InInstall(u"default.ksp"));
    EXPECT_FALSE(Open(true));
    EXPECT_EQ(w.Boxes(), Texts{u"Unrecognized project version!"});
}

TEST_F(ModProjectTest, Open_OfMediaOfAnotherGeneration_TellsSo) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    package.formatVersion = 7 * 256;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{u"Incompatible file format version (7.0)! Please upgrade your Kestrum."});
}

TEST_F(ModProjectTest, Open_OfEncryptedMedia_RunsTheConverterAndGoesOn) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    package.ectState = 1;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    fs.Put(ProjectWorld::InInstall(u"ksECT"), "program");
    w.world.processes.programs[u"ksECT"] = {1000, 0, [&](const std::vector<String>& arguments) {
                                                sim::Package converted = *w.world.ksLib.Get(arguments.at(0));
                                                converted.ectState = 0;
                                                w.world.ksLib.Put(arguments.at(0), converted);
                                                return std::optional<std::int32_t>();
                                            }};
    EXPECT_TRUE(Open(false));
    EXPECT_EQ(w.world.processes.started.size(), 1U);
}

TEST_F(ModProjectTest, Open_OfMediaThatStaysEncrypted_Fails) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    package.ectState = 1;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    fs.Put(ProjectWorld::InInstall(u"ksECT"), "program");
    w.world.processes.programs[u"ksECT"] = {1000, 0, nullptr};
    EXPECT_FALSE(Open(false));
}

TEST_F(ModProjectTest, Open_WhenTheEncryptionStateCannotBeRead_TellsSo) {
    w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    w.world.faults.FailCall(u"ksLib.GetECTState", 1, sim::Once);
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{u"Failed to get encryption state! (open file error)"});
}

/// A library of which some questions fail as a broken connection would.
class FailingKsLib : public sim::KsLib {
  public:
    explicit FailingKsLib(sim::World& world) : KsLib(world.faults, world.transcript, world.loop, world.fs) {}

    std::int32_t IsEmptyProject(const String& package) override {
        Raise(u"IsEmptyProject");
        return KsLib::IsEmptyProject(package);
    }
    std::int32_t GetFileFormatVersion(const String& package) override {
        Raise(u"GetFileFormatVersion");
        return KsLib::GetFileFormatVersion(package);
    }
    std::int32_t GetECTState(const String& package) override {
        Raise(u"GetECTState");
        return KsLib::GetECTState(package);
    }
    std::int32_t SetExtendDataInProject(const String& package, const host::StoredFiles& files) override {
        Raise(u"SetExtendDataInProject");
        return KsLib::SetExtendDataInProject(package, files);
    }

    String failing;

  private:
    void Raise(const String& call) const {
        if (call == failing) throw host::Error(host::ErrorNumber::Automation, call, u"no connection");
    }
};

class FailingStepTest : public ModProjectTest {
  protected:
    FailingStepTest() { w.PutPackage(ProjectText(Item("one", "0")), 60000, {0}); }

    FailingKsLib lib{w.world};
    host::Host host = w.world.HostWith({.ksLib = &lib});
    ui::Forms forms{w.world.presenter, w.world.loop};
    support::Context base{host, forms, w.support};
    project::State state{base};
    project::Context c{base, state};
};

TEST_F(FailingStepTest, AStepThatFails_IsSkippedInSilence) {
    for (const char16_t* call : {u"IsEmptyProject", u"GetECTState", u"SetExtendDataInProject"}) {
        SCOPED_TRACE(host::ToUtf8(call));
        lib.failing = call;
        bool continued = true;
        EXPECT_TRUE(modProject::OpenProject(c, false, continued));
        EXPECT_EQ(state.g_Project.index.Count(), 1);
        EXPECT_EQ(w.Boxes(), Texts{});
        modProject::DeleteWorkFolder(c);
    }
}

TEST_F(FailingStepTest, AStepThatRefuses_Ends) {
    sim::Package package = *w.world.ksLib.Get(ProjectWorld::kPackage);
    package.formatVersion = 9 * 256;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    bool continued = true;
    EXPECT_FALSE(modProject::OpenProject(c, false, continued));
    EXPECT_FALSE(fs.FileExists(InWork(u"index.html"))) << "the steps behind it do not run";
    EXPECT_EQ(w.Boxes().size(), 1U);
}

TEST_F(ModProjectTest, Open_OfNamesThatAreNone_UsesTheUsualOnes) {
    for (const char* name : {"..", ".", "", "a/.."}) {
        SCOPED_TRACE(name);
        std::string text = ReplacedOnce(ProjectText(Item("one", "0")), ">photo.gif<", ">" + std::string(name) + "<");
        text = ReplacedOnce(text, ">default<", ">" + std::string(name) + "<");
        w.PutPackage(text, 60000, {0});
        ASSERT_TRUE(Open(false));
        EXPECT_EQ(fs.Bytes(InWork(u"photo.gif")), "own photo");
        EXPECT_FALSE(fs.FileExists(InWork(u"default.ksp"))) << "the install folder itself is no template";
        modProject::DeleteWorkFolder(w.c);
    }
}

TEST_F(ModProjectTest, Open_InAScratchFolderThatCannotBeMade_TellsSoAndEnds) {
    fs.Remove(ProjectWorld::kWork);
    w.world.faults.FailCall(u"fs.CreateFolder", 1, sim::ForEver);
    EXPECT_FALSE(Open(true));
    EXPECT_EQ(w.Boxes().size(), 1U);
}

TEST_F(ModProjectTest, Template_UnderAnyFault_LeavesTheOwnPhotoInTheStoredFiles) {
    const int runs = sim::FaultSweep(u"fs.*", [](const auto& arm) {
        ProjectWorld desk;
        desk.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
        bool continued = false;
        ASSERT_TRUE(modProject::OpenProject(desk.c, false, continued));
        arm(desk.world.faults);
        modProject::ApplyTemplateFiles(desk.c);
        desk.world.faults.Clear();
        desk.world.fs.Remove(ProjectWorld::kWork);
        desk.world.fs.PutFolder(ProjectWorld::kWork);
        ASSERT_TRUE(modProject::OpenProject(desk.c, false, continued)) << desk.Story();
        EXPECT_EQ(desk.Titles(), Texts{u"one"});
        EXPECT_EQ(desk.world.fs.Bytes(ProjectWorld::InWork(u"photo.gif")), "own photo") << desk.Story();
    });
    EXPECT_GE(runs, 4);
}

// --- InitProject ---------------------------------------------------------------------------------------------------

TEST_F(ModProjectTest, Init_WithASavePointAndAPackage_RestoresTheSavePointAndSetsThePackageAside) {
    fs.Put(ProjectWorld::kPackage, "newer");
    fs.Put(InWork(u"media.ks.__"), "older");
    fs.Put(InWork(u"project.ksp.__"), "older project");
    modProject::InitProject(w.c);
    ASSERT_EQ(w.Boxes().size(), 1U);
    EXPECT_EQ(w.Boxes()[0].find(u"Editor failed to shut down correctly last time."), 0U);
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), "older");
    EXPECT_EQ(fs.Bytes(InWork(u"project.ksp")), "older project");
    EXPECT_FALSE(fs.FileExists(InWork(u"media.ks.__")));
    EXPECT_EQ(fs.Bytes(String(ProjectWorld::kPackage) + u".replaced"), "newer");
}

TEST_F(ModProjectTest, Init_WhenTheSavePointCannotBeMoved_LeavesThePackage) {
    fs.Put(ProjectWorld::kPackage, "newer");
    fs.Put(InWork(u"media.ks.__"), "older");
    w.world.faults.FailCall(u"fs.MoveFile", 2, sim::Once);
    modProject::InitProject(w.c);
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), "newer");
}

TEST_F(ModProjectTest, Init_UnderAnyFault_LosesNeitherThePackageNorTheSavePoint) {
    const int runs = sim::FaultSweep(u"fs.*", [](const auto& arm) {
        ProjectWorld desk;
        sim::FileSystem& files = desk.world.fs;
        files.Put(ProjectWorld::kPackage, "newer");
        files.Put(ProjectWorld::InWork(u"media.ks.__"), "older");
        files.Put(ProjectWorld::InWork(u"project.ksp.__"), "older project");
        arm(desk.world.faults);
        modProject::InitProject(desk.c);
        EXPECT_EQ(desk.Boxes().size(), 1U);
        std::vector<std::string> found;
        for (const String& path : files.All())
            if (files.FileExists(path)) found.push_back(files.Bytes(path));
        for (const char* content : {"newer", "older", "older project"})
            EXPECT_EQ(std::count(found.begin(), found.end(), content), 1) << content << "\n" << desk.Story();
        const bool failedForEver = desk.world.faults.Injected().size() > 1;
        EXPECT_TRUE(failedForEver || files.FileExists(ProjectWorld::kPackage)) << desk.Story();
    });
    EXPECT_GE(runs, 2);
}

TEST_F(ModProjectTest, Init_AfterABrokenImportWithThePackageInPlace_RestoresNothing) {
    fs.Put(ProjectWorld::kPackage, "package");
    fs.Put(String(ProjectWorld::kPackage) + u".move", "");
    modProject::InitProject(w.c);
    EXPECT_EQ(w.Boxes(), Texts{u"Move file error during import!"});
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), "package");
    EXPECT_FALSE(fs.FileExists(String(ProjectWorld::kPackage) + u".move"));
}

TEST_F(ModProjectTest, Init_OverAReadOnlyPackage_RestoresAllTheSame) {
    fs.Put(ProjectWorld::kPackage, "newer");
    fs.SetReadOnly(ProjectWorld::kPackage, true);
    fs.Put(InWork(u"media.ks.__"), "older");
    modProject::InitProject(w.c);
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), "older");
}

TEST_F(ModProjectTest, Init_AfterABrokenImport_TellsSoRestoresAndRemovesTheMarker) {
    fs.Put(String(ProjectWorld::kPackage) + u".move", "");
    fs.Put(InWork(u"media.ks.__"), "media");
    fs.Put(InWork(u"project.ksp.__"), "project");
    modProject::InitProject(w.c);
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_EQ(box.Shown()[0].text, u"Move file error during import!");
    EXPECT_EQ(box.Shown()[0].title, u"InitProject");
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), "media");
    EXPECT_FALSE(fs.FileExists(String(ProjectWorld::kPackage) + u".move"));
}

// --- Crash recovery ------------------------------------------------------------------------------------------------

TEST_F(ModProjectTest, Open_AfterAFailedRecording_RecoversTellsSoAndRemovesTheSnapshot) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0") + Item("two", "5000")), 60000, {0, 5000});
    package.torn = true;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    PutSnapshot(ProjectText(""));
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"})) << "the stored files are newer than the snapshot";
    ASSERT_EQ(w.Boxes().size(), 1U);
    EXPECT_NE(w.Boxes()[0].find(u"Recovered 60000 ms."), String::npos);
    EXPECT_FALSE(fs.FileExists(Snapshot()));
    EXPECT_FALSE(fs.FolderExists(String(ProjectWorld::kPackage) + u"._tmp"));
}

TEST_F(ModProjectTest, Open_AfterAFailedRecordingIntoAPackageWithoutFiles_StoresTheSnapshotForTheNextOpening) {
    sim::Package package = w.PutPackage("", 60000, {0, 5000});
    package.stored.clear();
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    PutSnapshot(ProjectText(Item("one", "0") + Item("two", "5000")));
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes().back(), u"Unrecognized project version!");
    EXPECT_TRUE(fs.FileExists(Snapshot()));
    const auto stored = w.world.ksLib.Get(ProjectWorld::kPackage)->stored;
    EXPECT_EQ(stored.at("cursor"), InstallFile("template/default/icons/cursor.gif"));
    EXPECT_EQ(stored.at("photo"), InstallFile("encfiles/photo.gif"));
    EXPECT_TRUE(Open(false));
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
    EXPECT_FALSE(fs.FileExists(Snapshot()));
}

TEST_F(ModProjectTest, Open_AfterAFailedRecordingThatCannotBeRecovered_KeepsEverything) {
    sim::Package package = w.PutPackage(ProjectText(Item("one", "0")), 60000, {0});
    package.damaged = true;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    PutSnapshot("snapshot");
    const std::string before = fs.Bytes(ProjectWorld::kPackage);
    EXPECT_FALSE(Open(false));
    EXPECT_EQ(w.Boxes(), Texts{u"File format error!"});
    EXPECT_EQ(fs.Bytes(ProjectWorld::kPackage), before);
    EXPECT_EQ(fs.Bytes(Snapshot()), "snapshot");
}

TEST_F(ModProjectTest, Recovery_UnderAnyFault_LosesNoEntryForTheNextOpening) {
    for (const char16_t* pattern : {u"fs.*", u"ksLib.*"}) {
        const int runs = sim::FaultSweep(pattern, [](const auto& arm) {
            ProjectWorld desk;
            sim::Package package =
                desk.PutPackage(ProjectText(Item("one", "0") + Item("two", "5000")), 60000, {0, 5000});
            package.torn = true;
            desk.world.ksLib.Put(ProjectWorld::kPackage, package);
            desk.world.fs.Put(Snapshot(), ProjectText(""));
            for (int i = 0; i < 9; ++i) desk.world.box.Answer(BoxAnswer::Cancel);
            arm(desk.world.faults);
            bool continued = false;
            modProject::OpenProject(desk.c, false, continued);
            desk.world.faults.Clear();
            desk.world.fs.Remove(ProjectWorld::kWork);
            desk.world.fs.PutFolder(ProjectWorld::kWork);
            ASSERT_TRUE(modProject::OpenProject(desk.c, false, continued)) << desk.Story();
            EXPECT_EQ(desk.Titles(), (Texts{u"one", u"two"}));
        });
        EXPECT_GE(runs, 4) << host::ToUtf8(pattern);
    }
}

// --- SaveProject ---------------------------------------------------------------------------------------------------

class SaveProjectTest : public ModProjectTest {
  protected:
    void SetUp() override {
        w.PutPackage(ProjectText(Item("one", "0")), 60000, {0, 5000});
        ASSERT_TRUE(Open(false));
        w.project.g_Project.AddIndex(u"two", u"5000", u"", u"", u"", u"", false, 0);
    }
    bool IsStored() const { return w.StoredProject().find("<title>two</title>") != std::string::npos; }
};

TEST_F(SaveProjectTest, StoresTheFilesOfTheScratchFolder) {
    modProject::SaveProject(w.c);
    EXPECT_TRUE(IsStored());
    EXPECT_EQ(w.world.ksLib.Get(ProjectWorld::kPackage)->stored.at("photo"), "own photo");
}

TEST_F(SaveProjectTest, WhatAnotherProgramStoredMeanwhile_IsNotOverwritten_AndTheUserIsTold) {
    const std::string recorded = ProjectText(Item("one", "0") + Item("shown meanwhile", "5000"));
    w.PutPackage(recorded, 60000, {0, 5000});
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.StoredProject(), recorded);
    ASSERT_EQ(w.Boxes().size(), 1U);
    EXPECT_NE(w.Boxes()[0].find(u"recorded or changed elsewhere"), String::npos);
}

TEST_F(SaveProjectTest, ASecondSaveOfOurOwn_IsNotTakenForAnothersWork) {
    modProject::SaveProject(w.c);
    w.project.g_Project.title = u"Again";
    modProject::SaveProject(w.c);
    EXPECT_NE(w.StoredProject().find("Again"), std::string::npos);
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(SaveProjectTest, APackageThatCannotBeReadForAMoment_IsStoredIntoAllTheSame) {
    w.world.faults.FailCall(u"ksLib.GetExtendDataFromProject", 1, sim::Once);
    modProject::SaveProject(w.c);
    EXPECT_TRUE(IsStored());
}

TEST_F(SaveProjectTest, WithoutAPackagePath_SavesTheProjectFileOnly) {
    w.support.packagePath.clear();
    modProject::SaveProject(w.c);
    EXPECT_NE(fs.Bytes(InWork(u"project.ksp")).find("<title>two</title>"), std::string::npos);
}

TEST_F(SaveProjectTest, WhenTheLibraryFailsOnce_TriesAgain) {
    w.world.faults.FailCall(u"ksLib.SetExtendDataInProject", 1, sim::Once);
    modProject::SaveProject(w.c);
    EXPECT_TRUE(IsStored());
}

TEST_F(SaveProjectTest, WhenStoringFails_TheNextOpeningFindsTheIndexAndStoresIt) {
    w.world.faults.FailCall(u"ksLib.SetExtendDataInProject", 1, sim::ForEver);
    modProject::SaveProject(w.c);
    EXPECT_FALSE(IsStored());
    modProject::DeleteWorkFolder(w.c);
    EXPECT_FALSE(fs.FolderExists(ProjectWorld::kWork));
    w.world.faults.Clear();
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
    EXPECT_TRUE(IsStored());
    EXPECT_FALSE(fs.FileExists(String(ProjectWorld::kPackage) + u".unsaved"));
}

TEST_F(SaveProjectTest, WhenNothingCanBeLeftBesideThePackage_TellsSoAndKeepsTheScratchFolder) {
    PutTexts("frmCommon", "msgIndexKept", "Kept in %s");
    w.world.faults.FailCall(u"ksLib.SetExtendDataInProject", 1, sim::ForEver);
    w.world.faults.FailCall(u"fs.CopyFile", 1, sim::ForEver);
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.Boxes(), Texts{u"Kept in " + w.support.workFolder});
    modProject::DeleteWorkFolder(w.c);
    EXPECT_NE(fs.Bytes(InWork(u"project.ksp")).find("<title>two</title>"), std::string::npos);
    w.world.faults.Clear();
    w.support.workFolder = u"/tmp/user/next";
    ASSERT_TRUE(Open(false));
    modProject::DeleteWorkFolder(w.c);
    EXPECT_FALSE(fs.FolderExists(u"/tmp/user/next")) << "other scratch folders go as ever";
}

TEST_F(SaveProjectTest, ACopyOfAFailedStoreThatIsOlderThanThePackage_IsNotTaken) {
    fs.Put(String(ProjectWorld::kPackage) + u".unsaved", ProjectText(Item("stale", "0")));
    w.world.loop.Advance(5000);
    w.PutPackage(ProjectText(Item("fresh", "0")), 60000, {0});
    ASSERT_TRUE(Open(false));
    EXPECT_EQ(w.Titles(), Texts{u"fresh"});
}

TEST_F(SaveProjectTest, WhenTheRenameFails_StoresTheNewFileFromItsTmp) {
    w.world.faults.FailCall(u"fs.MoveFile", 1, sim::Once);
    modProject::SaveProject(w.c);
    EXPECT_TRUE(IsStored());
}

TEST_F(SaveProjectTest, WhenTheLengthWasNotKnown_KeepsTheEntriesThatTheMediaHolds) {
    w.project.g_Project.SetDuration(0);
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
    EXPECT_TRUE(IsStored());
}

TEST_F(SaveProjectTest, WhenTheMediaGotShorter_DropsTheEntriesBeyondItsEnd) {
    w.project.g_Project.AddIndex(u"gone", u"60000", u"", u"", u"", u"", false, 0);
    modProject::SaveProject(w.c);
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
}

TEST_F(SaveProjectTest, UnderAnyFault_TheNextOpeningFindsTheOldOrTheNewIndex) {
    for (const char16_t* pattern : {u"fs.*", u"ksLib.*"}) {
        const int runs = sim::FaultSweep(pattern, [](const auto& arm) {
            ProjectWorld desk;
            desk.PutPackage(ProjectText(Item("one", "0")), 60000, {0, 5000});
            bool continued = false;
            ASSERT_TRUE(modProject::OpenProject(desk.c, false, continued));
            desk.project.g_Project.AddIndex(u"two", u"5000", u"", u"", u"", u"", false, 0);
            arm(desk.world.faults);
            modProject::SaveProject(desk.c);
            desk.world.faults.Clear();
            desk.world.fs.Remove(ProjectWorld::kWork);
            desk.world.fs.PutFolder(ProjectWorld::kWork);
            ASSERT_TRUE(modProject::OpenProject(desk.c, false, continued)) << desk.Story();
            const Texts titles = desk.Titles();
            EXPECT_TRUE(titles == (Texts{u"one", u"two"}) || titles == Texts{u"one"});
        });
        EXPECT_GE(runs, 2) << host::ToUtf8(pattern);
    }
}

// --- Tests for the start of a recording ----------------------------------------------------------------------------

TEST_F(ModProjectTest, WarnDriveType_OnAFixedDrive_IsSilent) {
    EXPECT_TRUE(modProject::WarnDriveType(w.c, ProjectWorld::kFolder));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(ModProjectTest, WarnDriveType_OnAMovableDrive_NamesTheFolderAndPasses) {
    fs.Put(
        ProjectWorld::InInstall(u"res.xml"),
        "<r><s name=\"frmMainBar\"><e name=\"msgDriveType\">Slow: %s. </e></s><s name=\"frmPPT\">"
        "<e name=\"msgDriveTypeMovePPTwithFolder\">Move %s.</e><e name=\"msgDriveTypeMovePPT\">Move it.</e></s></r>");
    fs.AddDrive(u"/media/usb", host::DriveType::Removable, 1LL << 30);
    EXPECT_TRUE(modProject::WarnDriveType(w.c, u"/media/usb"));
    fs.AddDrive(u"/net", host::DriveType::Network, 1LL << 30);
    EXPECT_TRUE(modProject::WarnDriveType(w.c, u"/net/gone"));
    EXPECT_EQ(w.Boxes(), (Texts{u"Slow: /media/usb. Move /media/usb.", u"Slow: /net/gone. Move it."}));
}

TEST_F(ModProjectTest, WarnDriveType_OnACd_ForAnotherSource_SaysHowToMoveTheProject) {
    fs.Put(ProjectWorld::InInstall(u"res.xml"),
           "<r><s name=\"frmMainBar\"><e name=\"msgDriveType\">%s is slow, %s. </e>"
           "<e name=\"msgDriveTypeMove\">Move %s.</e></s></r>");
    fs.AddDrive(u"/cd", host::DriveType::Cd, 1LL << 30);
    w.support.projectSource = u"KTR";
    EXPECT_TRUE(modProject::WarnDriveType(w.c, u"/cd"));
    EXPECT_EQ(w.Boxes(), Texts{u"/cd is slow, /cd. Move /cd."});
}

class EditingTest : public ModProjectTest {
  protected:
    /// Whether a recording is kept back by an editor that wrote its mark `seconds` ago.
    bool BlockedAfter(std::int64_t seconds) {
        modConfig::SaveSetting(w.c, u"configure", u"touchTime", DateTimeText(w.world.loop.Now()));
        w.world.loop.Advance(seconds * 1000);
        return modProject::IsEditingElsewhere(w.c);
    }
};

TEST_F(EditingTest, AMarkOfNineSecondsAgo_Blocks) {
    EXPECT_TRUE(BlockedAfter(9));
    EXPECT_EQ(w.Boxes().size(), 1U);
}

TEST_F(EditingTest, AMarkOfThisMoment_Blocks) {
    EXPECT_TRUE(BlockedAfter(0));
}

TEST_F(EditingTest, AMarkOfTenSecondsAgo_DoesNotBlock) {
    EXPECT_FALSE(BlockedAfter(10));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(EditingTest, AMarkInTheFuture_DoesNotBlock) {
    modConfig::SaveSetting(w.c, u"configure", u"touchTime", u"2999/1/1 00:00:00");
    EXPECT_FALSE(modProject::IsEditingElsewhere(w.c));
}

TEST_F(EditingTest, NoMarkOrOneThatIsNoDate_DoesNotBlock) {
    EXPECT_FALSE(modProject::IsEditingElsewhere(w.c));
    modConfig::SaveSetting(w.c, u"configure", u"touchTime", u"soon");
    EXPECT_FALSE(modProject::IsEditingElsewhere(w.c));
}

TEST_F(ModProjectTest, ProgramVersion_IsThatOfTheTemplate) {
    EXPECT_EQ(modProject::GetProgramVersion(w.c), u"8.0");
    fs.Remove(ProjectWorld::InInstall(u"default.ksp"));
    EXPECT_EQ(modProject::GetProgramVersion(w.c), u"");
}

// --- RecentProjects ------------------------------------------------------------------------------------------------

class RecentProjectsTest : public ModProjectTest {
  protected:
    static String Path(int number) { return u"/home/anna/" + ToText(number) + u".ktr"; }
    Texts Reloaded() {
        RecentProjects fresh(w.c);
        fresh.LoadRecent();
        Texts paths;
        for (const RecentProjects::Entry& entry : fresh.entries()) paths.push_back(entry.path);
        return paths;
    }
    void AddUpTo(int count) {
        for (int i = 1; i <= count; ++i) {
            fs.Put(Path(i), "package");
            recent.AddRecent(Path(i));
        }
    }

    RecentProjects recent{w.c};
};

TEST_F(RecentProjectsTest, AddRecent_PutsThePathOnTopWithItsDate) {
    AddUpTo(2);
    EXPECT_EQ(Reloaded(), (Texts{Path(2), Path(1)}));
    EXPECT_EQ(modConfig::GetHexSetting(w.c, u"lastOpenedProj", u"dt1", u""), DateTimeText(w.world.loop.Now()));
    EXPECT_EQ(modConfig::GetSetting(w.c, u"lastOpenedProj", u"1", u"").substr(0, 2), u"&H");
}

TEST_F(RecentProjectsTest, AddRecent_OfASeventh_DropsTheOldest) {
    AddUpTo(7);
    EXPECT_EQ(Reloaded(), (Texts{Path(7), Path(6), Path(5), Path(4), Path(3), Path(2)}));
}

TEST_F(RecentProjectsTest, AddRecent_OfAPathThatIsThere_MovesItToTheTop) {
    AddUpTo(6);
    recent.AddRecent(Path(3));
    EXPECT_EQ(Reloaded(), (Texts{Path(3), Path(6), Path(5), Path(4), Path(2), Path(1)}));
}

TEST_F(RecentProjectsTest, AddRecent_OfAnotherCase_IsAnotherPath) {
    AddUpTo(6);
    fs.Put(u"/home/anna/3.KTR.ktr", "package");
    recent.AddRecent(u"/home/anna/3.KTR.ktr");
    EXPECT_EQ(Reloaded(), (Texts{u"/home/anna/3.KTR.ktr", Path(6), Path(5), Path(4), Path(3), Path(2)}));
}

TEST_F(RecentProjectsTest, AShorterList_EmptiesTheSlotsBehindIt) {
    AddUpTo(6);
    for (int i = 1; i <= 4; ++i) fs.Remove(Path(i));
    RecentProjects fresh(w.c);
    fresh.LoadRecent();
    fresh.AddRecent(Path(5));
    for (int slot = 3; slot <= 6; ++slot) {
        EXPECT_EQ(modConfig::GetSetting(w.c, u"lastOpenedProj", ToText(slot), u"?"), u"") << slot;
        EXPECT_EQ(modConfig::GetSetting(w.c, u"lastOpenedProj", u"dt" + ToText(slot), u"?"), u"") << slot;
    }
}

TEST_F(RecentProjectsTest, APlainPath_CountsToo) {
    fs.Put(Path(1), "package");
    modConfig::SaveSetting(w.c, u"lastOpenedProj", u"4", Path(1));
    EXPECT_EQ(Reloaded(), Texts{Path(1)});
}

TEST_F(RecentProjectsTest, HostileContents_AreNoEntries) {
    for (const char16_t* text : {u"", u"&H", u"&H2", u"&Hxyz", u"&H2F", u"\xD800\xD800.k", u".kt", u"&H0000"})
        EXPECT_FALSE(DecodeRecentEntry(text, u"").has_value()) << host::ToUtf8(text);
    const String hidden = String(u"/etc/passwd") + String(1, u'\0') + u".ktr";
    EXPECT_FALSE(DecodeRecentEntry(hidden, u"").has_value());
    EXPECT_TRUE(DecodeRecentList("").empty());
    EXPECT_TRUE(DecodeRecentList("\n\n\xFF\xFE\n").empty());
    const auto six = DecodeRecentList("/a.ktr\nd\n/a.ktr\nd\n/a.ktr\nd\n/a.ktr\nd\n/a.ktr\nd\n/a.ktr\nd\n/a.ktr\nd\n");
    EXPECT_EQ(six.size(), 6U);
    EXPECT_EQ(DecodeRecentList("/a.ktr").at(0).path, u"/a.ktr");
}

TEST_F(RecentProjectsTest, AddRecent_UnderAnyFault_LeavesReadableEntriesOnly) {
    const int runs = sim::FaultSweep(u"settings.*", [](const auto& arm) {
        ProjectWorld desk;
        RecentProjects list(desk.c);
        for (int i = 1; i <= 3; ++i) {
            desk.world.fs.Put(Path(i), "package");
            list.AddRecent(Path(i));
        }
        arm(desk.world.faults);
        list.AddRecent(Path(1));
        desk.world.faults.Clear();
        RecentProjects fresh(desk.c);
        fresh.LoadRecent();
        EXPECT_LE(fresh.entries().size(), 3U);
        for (const RecentEntry& entry : fresh.entries()) EXPECT_TRUE(desk.world.fs.FileExists(entry.path));
    });
    EXPECT_GE(runs, 2);
}

TEST_F(RecentProjectsTest, LoadRecent_TakesExistingPackagesOnly) {
    AddUpTo(2);
    fs.Remove(Path(2));
    fs.Put(u"/home/anna/talk.txt", "text");
    recent.AddRecent(u"/home/anna/talk.txt");
    EXPECT_EQ(Reloaded(), Texts{Path(1)});
}

}  // namespace
}  // namespace kestrum
