#include "project/modMediaKs.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"

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

TEST_F(ModMediaKsTest, VerifyMedia_ShowsAStatusWhileItChecks) {
    w.PutPackage(ProjectText(""), 1000, {0});
    Texts shown;
    w.world.loop.Post([&] { shown.push_back(w.forms.Find(u"frmStatus") ? u"status" : u"nothing"); });
    EXPECT_TRUE(modMediaKs::VerifyMedia(w.c, ProjectWorld::kPackage, true, false));
    EXPECT_EQ(shown, Texts{u"status"});
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
    EXPECT_EQ(w.Titles(), Texts{u"one"});
    EXPECT_EQ(w.world.ksLib.Get(ProjectWorld::kPackage)->lengthMs, 60000);
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
