#include "project/modMediaKs.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"
#include "support/frmStatus.h"

namespace kestrum {
namespace {

using host::BoxAnswer;
using test::Item;
using test::ProjectText;
using test::ProjectWorld;
using Texts = std::vector<String>;

class ModMediaKsTest : public testing::Test {
  protected:
    /// A loaded project with these items beside a package.
    void SetProject(const std::string& items, std::int32_t lengthMs, const std::vector<std::int32_t>& keyFrames,
                    const std::string& duration = "01:00") {
        w.PutPackage(ProjectText(items, duration), lengthMs, keyFrames);
        ASSERT_TRUE(w.Load(ProjectText(items, duration)));
    }
    void SetFormat(std::int32_t version) {
        sim::Package package;
        package.formatVersion = version;
        w.world.ksLib.Put(ProjectWorld::kPackage, package);
    }
    bool IsStored(const std::string& part) const { return w.StoredProject().find(part) != std::string::npos; }

    ProjectWorld w;
    sim::MessageBox& box = w.world.box;
};

// --- VerifyMedia ---------------------------------------------------------------------------------------------------

TEST_F(ModMediaKsTest, VerifyMedia_OfAMissingFile_NamesIt) {
    EXPECT_FALSE(modMediaKs::VerifyMedia(w.c, u"/x/a.ktr", true, false));
    EXPECT_EQ(w.Boxes(), Texts{u"File '/x/a.ktr' not exist!"});
}

TEST_F(ModMediaKsTest, VerifyMedia_OfSoundMedia_ClosesTheStatusWindowAndIsSilent) {
    w.PutPackage(ProjectText(""), 1000, {0});
    EXPECT_TRUE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, false, false));
    EXPECT_TRUE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, true, true));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_FALSE(w.forms.IsFormLoaded(u"frmStatus"));
}

TEST_F(ModMediaKsTest, VerifyMedia_TellsWhatItDoesWhileItChecks) {
    w.PutPackage(ProjectText(""), 1000, {0});
    Texts shown;
    const auto check = [&](bool whole, bool failedRecording) {
        w.world.loop.Post([&] {
            auto* status = dynamic_cast<frmStatus*>(w.forms.Find(u"frmStatus"));
            shown.push_back(status ? status->lStatus.Caption() : String(u"nothing"));
        });
        EXPECT_TRUE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, whole, failedRecording));
    };
    check(true, true);
    check(false, true);
    check(true, false);
    check(false, false);
    const String failed = u"Recording was not completed successfully. Please wait while checking files.";
    EXPECT_EQ(shown, (Texts{failed, failed, u"Verifying whole project. Please wait.", u"Verifying project ..."}));
}

TEST_F(ModMediaKsTest, VerifyMedia_ReadsEverythingOnlyWhenToldTo) {
    w.PutPackage(ProjectText(""), 1000, {0});
    modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, false, true);
    modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, true, false);
    EXPECT_EQ(w.world.transcript.Only(u"ksLib.verify"), (Texts{u"ksLib.verifyKsFile /home/anna/talks/deck.ktr",
                                                               u"ksLib.verifyWholeKsFile /home/anna/talks/deck.ktr"}));
}

TEST_F(ModMediaKsTest, VerifyMedia_OfDamagedMedia_TellsByTheKindOfCall) {
    sim::Package package = w.PutPackage(ProjectText(""), 1000, {0});
    package.damaged = true;
    w.world.ksLib.Put(ProjectWorld::kPackage, package);
    EXPECT_FALSE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, true, true));
    EXPECT_FALSE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, true, false));
    EXPECT_FALSE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, false, false));
    EXPECT_EQ(w.Boxes(), (Texts{u"File format error!", u"Verify project error!", u"Verify project error!"}));
}

// --- IsKsFmtCompatible ---------------------------------------------------------------------------------------------

TEST_F(ModMediaKsTest, Format_OfThisGenerationAndTheMarkOfNone_IsCompatible) {
    SetFormat(8 * 256);
    EXPECT_TRUE(modMediaKs::IsKsFmtCompatible(w.c, ProjectWorld::kPackage));
    SetFormat(32767);
    EXPECT_TRUE(modMediaKs::IsKsFmtCompatible(w.c, ProjectWorld::kPackage));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(ModMediaKsTest, Format_OfAnyOther_IsRejectedWithItsNumber) {
    for (const std::int32_t version : {8 * 256 + 1, 7 * 256, 2176, 0}) {
        SetFormat(version);
        EXPECT_FALSE(modMediaKs::IsKsFmtCompatible(w.c, ProjectWorld::kPackage));
    }
    const auto text = [](const String& number) {
        return u"Incompatible file format version (" + number + u")! Please upgrade your Kestrum.";
    };
    EXPECT_EQ(w.Boxes(), (Texts{text(u"8.1"), text(u"7.0"), text(u"9.128"), text(u"0.0")}));
}

TEST_F(ModMediaKsTest, Format_MajorNumbers_AreRounded) {
    SetFormat(7 * 256 + 127);
    EXPECT_FALSE(modMediaKs::IsKsFmtCompatible(w.c, ProjectWorld::kPackage));
    SetFormat(7 * 256 + 128);
    EXPECT_FALSE(modMediaKs::IsKsFmtCompatible(w.c, ProjectWorld::kPackage));
    SetFormat(126 * 256 + 255);
    EXPECT_TRUE(modMediaKs::IsKsFmtCompatible(w.c, ProjectWorld::kPackage)) << "rounds to 127, minor 255";
    EXPECT_EQ(w.Boxes(), (Texts{u"Incompatible file format version (7.127)! Please upgrade your Kestrum.",
                                u"Incompatible file format version (8.128)! Please upgrade your Kestrum."}));
}

/// A library that raises when it is asked for the version.
struct RaisingLib : sim::KsLib {
    using sim::KsLib::KsLib;
    std::int32_t GetFileFormatVersion(const String&) override {
        throw host::Error(host::ErrorNumber::Automation, u"ksLib", u"The library is not there.");
    }
};

TEST_F(ModMediaKsTest, Format_WhenTheLibraryRaises_IsToldUnderTheRoutinesName) {
    RaisingLib lib(w.world.faults, w.world.transcript, w.world.loop, w.world.fs);
    host::Host ports = w.world.HostWith({.ksLib = &lib});
    const support::Context base{ports, w.forms, w.support};
    EXPECT_FALSE(modMediaKs::IsKsFmtCompatible({base, w.project}, ProjectWorld::kPackage));
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_EQ(box.Shown()[0].text, u"The library is not there.");
    EXPECT_EQ(box.Shown()[0].title, u"IsKsFmtCompatible");
}

// --- Key frames ----------------------------------------------------------------------------------------------------

TEST_F(ModMediaKsTest, IsKeyFramePos_ReadsTheListOnceUntilToldToReload) {
    w.PutPackage(ProjectText(""), 60000, {0, 5000});
    EXPECT_TRUE(modMediaKs::IsKeyFramePos(w.c, 5000, false, ProjectWorld::kPackage));
    EXPECT_FALSE(modMediaKs::IsKeyFramePos(w.c, 500, false, ProjectWorld::kPackage)) << "a part of a number";
    w.PutPackage(ProjectText(""), 60000, {0, 7000});
    EXPECT_TRUE(modMediaKs::IsKeyFramePos(w.c, 5000, false, ProjectWorld::kPackage));
    EXPECT_FALSE(modMediaKs::IsKeyFramePos(w.c, 5000, true, ProjectWorld::kPackage));
    EXPECT_TRUE(modMediaKs::IsKeyFramePos(w.c, 7000, false, ProjectWorld::kPackage));
    EXPECT_FALSE(w.world.fs.FileExists(u"/home/anna/talks/media.key"));
}

TEST_F(ModMediaKsTest, IsKeyFramePos_WhenTheListCannotBeRead_Fails) {
    w.PutPackage(ProjectText(""), 60000, {0});
    w.world.faults.FailCall(u"ksLib.ListIndex", 1, sim::Once);
    EXPECT_THROW(modMediaKs::IsKeyFramePos(w.c, 0, true, ProjectWorld::kPackage), host::Error);
}

TEST_F(ModMediaKsTest, IsKeyFramePos_WhenTheListCannotBeDeleted_AnswersAllTheSame) {
    w.PutPackage(ProjectText(""), 60000, {0, 5000});
    w.world.faults.FailCall(u"fs.DeleteFile", 1, sim::ForEver);
    EXPECT_TRUE(modMediaKs::IsKeyFramePos(w.c, 5000, true, ProjectWorld::kPackage));
    EXPECT_TRUE(w.world.fs.FileExists(u"/home/anna/talks/media.key")) << "in the folder of the media";
}

TEST_F(ModMediaKsTest, LastKeyFramePos_IsTheLastLineOrNone) {
    EXPECT_EQ(modMediaKs::LastKeyFramePos(w.c), -1);
    w.PutPackage(ProjectText(""), 0, {});
    EXPECT_EQ(modMediaKs::LastKeyFramePos(w.c), -1);
    w.PutPackage(ProjectText(""), 60000, {0, 5000, 12000});
    EXPECT_EQ(modMediaKs::LastKeyFramePos(w.c), 12000);
    EXPECT_FALSE(w.world.fs.FileExists(ProjectWorld::InWork(u"media.key")));
}

// --- VerifyIndex ---------------------------------------------------------------------------------------------------

TEST_F(ModMediaKsTest, VerifyIndex_OfAWholeProject_ChangesNothing) {
    SetProject(Item("one", "0") + Item("two", "5000"), 60000, {0, 5000});
    const std::string before = w.world.fs.Bytes(ProjectWorld::kPackage);
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(w.world.fs.Bytes(ProjectWorld::kPackage), before);
}

TEST_F(ModMediaKsTest, VerifyIndex_OfASingleLink_InsertsNothing) {
    SetProject(Item("link", "-1", "http://x"), 60000, {0});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Titles(), Texts{u"link"});
}

TEST_F(ModMediaKsTest, VerifyIndex_WhenTheFirstItemLiesLater_CoversTheStartAndSaves) {
    SetProject(Item("link", "-1", "http://x") + Item("one", "1200"), 60000, {0, 1200});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Titles(), (Texts{u"----", u"link", u"one"}));
    EXPECT_EQ(w.project.g_Project.index.Item(1).pos, u"0");
    EXPECT_EQ(w.project.g_Project.index.Item(1).RecDate, DateTimeText(w.world.loop.Now()));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_TRUE(IsStored("<title>----</title>"));
    EXPECT_TRUE(w.world.fs.FileExists(ProjectWorld::InWork(u"project.ksp.__")));
}

TEST_F(ModMediaKsTest, VerifyIndex_ListsTheItemsOffTheKeyFramesInOrderAndRemovesThem) {
    SetProject(Item("one", "0") + Item("two", "5000") + Item("link", "-1", "u") + Item("three", "7000"), 60000, {0});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{u"\r\nSlide 2 :  \"two\"\r\nSlide 4 :  \"three\"\r\n"});
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"link"}));
    EXPECT_FALSE(IsStored("<title>two</title>"));
}

TEST_F(ModMediaKsTest, VerifyIndex_EveryItemButTheFirstOffTheKeyFrames_LeavesOne) {
    SetProject(Item("one", "0") + Item("two", "5000") + Item("three", "7000"), 60000, {0});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{u"\r\nSlide 2 :  \"two\"\r\nSlide 3 :  \"three\"\r\n"});
    EXPECT_EQ(w.Titles(), Texts{u"one"});
    EXPECT_TRUE(IsStored("<title>one</title>"));
    EXPECT_FALSE(IsStored("<title>two</title>"));
    EXPECT_EQ(w.world.ksLib.Get(ProjectWorld::kPackage)->lengthMs, 60000);
}

TEST_F(ModMediaKsTest, VerifyIndex_NumbersTheItemsBehindTheOneItPutInFront) {
    SetProject(Item("off", "1200"), 60000, {0});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{u"\r\nSlide 2 :  \"off\"\r\n"});
    EXPECT_EQ(w.Titles(), Texts{u"----"});
}

TEST_F(ModMediaKsTest, VerifyIndex_ReadsTheKeyFramesAfresh) {
    SetProject(Item("one", "0") + Item("two", "5000"), 60000, {0});
    EXPECT_FALSE(modMediaKs::IsKeyFramePos(w.c, 5000, true, ProjectWorld::kPackage));
    w.PutPackage(ProjectText(Item("one", "0") + Item("two", "5000")), 60000, {0, 5000});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
}

TEST_F(ModMediaKsTest, VerifyIndex_KeepsTheStateBeforeTheRepairAsASavePoint) {
    SetProject(Item("one", "0") + Item("off", "700"), 60000, {0});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_NE(w.world.fs.Bytes(ProjectWorld::InWork(u"project.ksp.__")).find("<title>off</title>"), std::string::npos);
    EXPECT_EQ(w.world.fs.Bytes(ProjectWorld::InWork(u"project.ksp")).find("<title>off</title>"), std::string::npos);
}

TEST_F(ModMediaKsTest, VerifyIndex_WithoutASavePoint_StoresAllTheSame) {
    SetProject(Item("one", "0") + Item("off", "700"), 60000, {0});
    w.world.faults.FailCall(u"fs.CopyFile", 1, sim::Once);
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_FALSE(IsStored("<title>off</title>"));
}

TEST_F(ModMediaKsTest, VerifyIndex_WithTheLanguageFile_SaysEachThingInASentence) {
    w.world.fs.Put(ProjectWorld::InInstall(u"res.xml"), test::InstallFile("res.xml"));
    SetProject(Item("one", "0") + Item("off", "700"), 60001, {0});
    box.Answer(BoxAnswer::Ok);
    box.Answer(BoxAnswer::Yes);
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    ASSERT_EQ(w.Boxes().size(), 3U);
    EXPECT_EQ(w.Boxes()[0],
              u"These entries of the slide index do not fit the recording and have been "
              u"corrected:\r\nSlide 2 :  \"off\"\r\n");
    EXPECT_NE(w.Boxes()[1].find(u"The length that the project notes differs"), String::npos);
    EXPECT_GT(w.Boxes()[2].size(), 10U);
}

TEST_F(ModMediaKsTest, VerifyIndex_CutsLongTitlesInTheReport) {
    const std::string fifty(50, 'x');
    SetProject(Item("one", "0") + Item(fifty, "5000") + Item(fifty + "y", "7000"), 60000, {0});
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    const String shown(50, u'x');
    EXPECT_EQ(w.Boxes(), Texts{u"\r\nSlide 2 :  \"" + shown + u"\"\r\nSlide 3 :  \"" + shown + u" ...\"\r\n"});
}

TEST_F(ModMediaKsTest, VerifyIndex_WhenTheKeyFramesCannotBeRead_RemovesNothing) {
    SetProject(Item("one", "0") + Item("two", "5000"), 60000, {0, 5000});
    w.world.faults.FailCall(u"ksLib.ListIndex", 1, sim::Once);
    EXPECT_FALSE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{u" (The key frames of the recording could not be read.)"});
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
    EXPECT_TRUE(IsStored("<title>two</title>"));
}

TEST_F(ModMediaKsTest, VerifyIndex_WithoutAPackage_SkipsTheDuration) {
    ASSERT_TRUE(w.Load(ProjectText(Item("link", "-1", "u"))));
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(ModMediaKsTest, VerifyIndex_OneMillisecondOff_AsksAndRepairs) {
    SetProject(Item("one", "0"), 60001, {0});
    box.Answer(BoxAnswer::Yes);
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(box.Shown().size(), 2U) << "the question and the success";
    EXPECT_EQ(w.project.g_Project.duration(), 60001);
    EXPECT_TRUE(IsStored("duration=\"01:00.001\""));
}

TEST_F(ModMediaKsTest, VerifyIndex_WhenTheUserDoesNotWantARepair_IsFalse) {
    SetProject(Item("one", "0"), 60001, {0});
    box.Answer(BoxAnswer::No);
    EXPECT_FALSE(modMediaKs::VerifyIndex(w.c));
    EXPECT_TRUE(IsStored("duration=\"01:00\""));
}

TEST_F(ModMediaKsTest, VerifyIndex_WhenThePackageVanishesWhileItAsks_IsFalseAndSaysSo) {
    SetProject(Item("one", "0"), 60001, {0});
    box.AnswerAfter(1000, BoxAnswer::Yes, [&] { w.world.fs.Remove(ProjectWorld::kPackage); });
    EXPECT_FALSE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes().back(), u"File '/home/anna/talks/deck.ktr' not exist!");
    EXPECT_FALSE(w.world.fs.FileExists(ProjectWorld::kPackage));
}

TEST_F(ModMediaKsTest, VerifyIndex_WhenTheMediaIsDamaged_DoesNotRepair) {
    SetProject(Item("one", "0"), 60001, {0});
    box.Answer(BoxAnswer::Yes);
    w.world.faults.FailCall(u"ksLib.verifyWholeKsFile", 1, sim::Once);
    EXPECT_FALSE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes().back(), u"Verify project error!");
    EXPECT_TRUE(IsStored("duration=\"01:00\""));
}

TEST_F(ModMediaKsTest, VerifyIndex_WhenTheLengthCannotBeRead_DropsNothing) {
    SetProject(Item("one", "0") + Item("two", "5000"), 60000, {0, 5000});
    w.world.faults.FailCall(u"ksLib.GetLength", 1, sim::ForEver);
    EXPECT_FALSE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Boxes(), Texts{u" (The length of the recording could not be read.)"});
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"two"}));
}

TEST_F(ModMediaKsTest, VerifyIndex_WithATooShortDurationAndABadItem_KeepsTheEntriesBeyondItAndStillAsks) {
    SetProject(Item("one", "0") + Item("bad", "1000") + Item("late", "30000"), 60000, {0, 30000}, "00:10");
    box.Answer(BoxAnswer::Ok);
    box.Answer(BoxAnswer::Yes);
    EXPECT_TRUE(modMediaKs::VerifyIndex(w.c));
    EXPECT_EQ(w.Titles(), (Texts{u"one", u"late"}));
    EXPECT_TRUE(IsStored("<title>late</title>"));
    EXPECT_EQ(w.project.g_Project.duration(), 60000);
}

TEST_F(ModMediaKsTest, VerifyIndex_UnderAnyFault_RemovesNoSoundEntryFromThePackage) {
    for (const char16_t* pattern : {u"fs.*", u"ksLib.*"}) {
        const int runs = sim::FaultSweep(pattern, [](const auto& arm) {
            ProjectWorld desk;
            const std::string text = ProjectText(Item("one", "0") + Item("bad", "1000") + Item("two", "5000"));
            desk.PutPackage(text, 61000, {0, 5000});
            ASSERT_TRUE(desk.Load(text));
            for (int i = 0; i < 9; ++i) desk.world.box.Answer(BoxAnswer::Yes);
            arm(desk.world.faults);
            modMediaKs::VerifyIndex(desk.c);
            const std::string stored = desk.StoredProject();
            EXPECT_NE(stored.find("<title>one</title>"), std::string::npos);
            EXPECT_NE(stored.find("<title>two</title>"), std::string::npos);
        });
        EXPECT_GE(runs, 3) << host::ToUtf8(pattern);
    }
}

}  // namespace
}  // namespace kestrum
