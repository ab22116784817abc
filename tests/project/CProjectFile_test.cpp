#include "project/CProjectFile.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"

namespace kestrum {
namespace {

using host::BoxAnswer;
using test::InstallFile;
using test::Item;
using test::ProjectText;
using test::ProjectWorld;
using test::ReplacedOnce;
using Texts = std::vector<String>;

class CProjectFileTest : public testing::Test {
  protected:
    std::string File() const { return w.world.fs.Bytes(ProjectWorld::kProjectFile); }
    bool Contains(const std::string& part) const { return File().find(part) != std::string::npos; }

    ProjectWorld w;
    CProjectFile& ksp = w.project.g_Project;
    sim::FileSystem& fs = w.world.fs;
    sim::MessageBox& box = w.world.box;
};

TEST_F(CProjectFileTest, Load_OfTheTemplate_FillsEveryFieldWithoutABox) {
    ASSERT_TRUE(w.Load(InstallFile("default.ksp")));
    EXPECT_EQ(ksp.ver, u"8.0");
    EXPECT_EQ(ksp.title, u"Kestrum Title");
    EXPECT_EQ(ksp.template_, u"default");
    EXPECT_EQ(ksp.photo, u"photo.gif");
    EXPECT_EQ(ksp.photoSize, u"160x120");
    EXPECT_EQ(ksp.soundVolume, u"3");
    EXPECT_EQ(ksp.showcursor, u"1");
    EXPECT_EQ(ksp.realcursor, u"0");
    EXPECT_EQ(ksp.audioBitrate, u"32");
    EXPECT_EQ(ksp.videoBitrate, u"96");
    EXPECT_EQ(ksp.contentID, u"0");
    EXPECT_EQ(ksp.indexType, u"OL");
    EXPECT_EQ(ksp.duration(), 0);
    EXPECT_EQ(ksp.fileName, ProjectWorld::kProjectFile);
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, Save_OfTheTemplate_IsLargeEnoughToBeStored) {
    ASSERT_TRUE(w.Load(InstallFile("default.ksp")));
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_GE(File().size(), 500U);
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, Load_OfAMissingFile_IsFalseAndSilent) {
    EXPECT_FALSE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(ksp.fileName, u"");
}

TEST_F(CProjectFileTest, Load_OfAnotherMajorVersion_IsFalseAndSilentWithDefaults) {
    ksp.title = u"old";
    EXPECT_FALSE(w.Load(ReplacedOnce(InstallFile("default.ksp"), "8.0", "7.5")));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(ksp.title, u"Kestrum Title");
}

TEST_F(CProjectFileTest, Load_LooksAtTheFirstCharacterOfTheVersionOnly) {
    EXPECT_TRUE(w.Load(ReplacedOnce(InstallFile("default.ksp"), "8.0", "87")));
    EXPECT_FALSE(w.Load(ReplacedOnce(InstallFile("default.ksp"), "8.0", "10.0")));
}

TEST_F(CProjectFileTest, Load_TakesTheVersionFromTheFirstAttributeWhateverItsName) {
    EXPECT_TRUE(w.Load(ReplacedOnce(InstallFile("default.ksp"), "ver=", "anything=")));
    EXPECT_EQ(ksp.ver, u"8.0");
}

TEST_F(CProjectFileTest, Load_OfAVersionThatIsNoDigit_AsksAndCancelGivesFalse) {
    box.Answer(BoxAnswer::Cancel);
    EXPECT_FALSE(w.Load(ReplacedOnce(InstallFile("default.ksp"), "8.0", "x8")));
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_EQ(box.Shown()[0].title, u"Load project.ksp");
    EXPECT_EQ(box.Shown()[0].buttons, host::BoxButtons::OkCancel);
    EXPECT_NE(box.Shown()[0].text.find(u" set default value\r\n"), String::npos);
}

TEST_F(CProjectFileTest, Load_OfBytesThatAreNoXml_AsksAndCancelLeavesTheFile) {
    box.Answer(BoxAnswer::Cancel);
    EXPECT_FALSE(w.Load("no project at all"));
    EXPECT_EQ(File(), "no project at all");
}

TEST_F(CProjectFileTest, Load_OfBytesThatAreNoXml_WhenTheUserAlwaysGoesOn_NeverReplacesTheFile) {
    for (int i = 0; i < 60; ++i) box.Answer(BoxAnswer::Ok);
    w.Load("no project at all");
    EXPECT_EQ(File(), "no project at all");
}

TEST_F(CProjectFileTest, Load_WithAMissingValue_KeepsTheDefaultAndWritesBackOnOk) {
    box.Answer(BoxAnswer::Ok);
    EXPECT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("one", "0")), "<realcursor>0</realcursor>", "")));
    ASSERT_GE(w.Boxes().size(), 1U);
    EXPECT_NE(w.Boxes()[0].find(u" configure\r\n"), String::npos);
    EXPECT_EQ(ksp.realcursor, u"0");
    EXPECT_EQ(w.Titles(), Texts{u"one"}) << "a failure in the settings never costs the first item";
}

TEST_F(CProjectFileTest, Load_WithADecreasingPosition_LeavesThatItemOutAndRewritesTheFile) {
    box.Answer(BoxAnswer::Ok);
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0") + Item("2", "5000") + Item("3", "3000") + Item("4", "4000"))));
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_NE(box.Shown()[0].text.find(u" index.item(i).pos\r\n"), String::npos);
    EXPECT_EQ(w.Titles(), (Texts{u"1", u"2", u"4"}));
    EXPECT_FALSE(Contains("<pos>3000</pos>"));
    EXPECT_TRUE(Contains("<pos>4000</pos>"));
}

TEST_F(CProjectFileTest, Load_WithADecreasingPosition_IsFalseOnCancelAndTheFileStays) {
    const std::string text = ProjectText(Item("1", "5000") + Item("2", "3000"));
    box.Answer(BoxAnswer::Cancel);
    EXPECT_FALSE(w.Load(text));
    EXPECT_EQ(File(), text);
}

TEST_F(CProjectFileTest, Load_WhenAnotherLoadComesWhileItAsks_GivesWay) {
    fs.Put(ProjectWorld::InWork(u"other.ksp"), ProjectText(Item("other", "0")));
    box.AnswerAfter(1000, BoxAnswer::Ok, [&] { EXPECT_TRUE(ksp.Load(ProjectWorld::InWork(u"other.ksp"))); });
    EXPECT_FALSE(w.Load(ProjectText(Item("1", "5000") + Item("2", "3000") + Item("3", "6000"))));
    EXPECT_EQ(w.Titles(), Texts{u"other"});
    EXPECT_EQ(ksp.fileName, ProjectWorld::InWork(u"other.ksp"));
}

TEST_F(CProjectFileTest, Load_WithABrokenPosition_LeavesThatItemOut) {
    box.Answer(BoxAnswer::Ok);
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0") + Item("2", "soon") + Item("3", "3000"))));
    EXPECT_EQ(w.Titles(), (Texts{u"1", u"3"}));
}

TEST_F(CProjectFileTest, Load_OfLinks_DoesNotDisturbTheOrderAndKeepsTheirUrl) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "5000") + Item("link", "-1", "http://x") + Item("2", "6000"))));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(w.Titles(), (Texts{u"1", u"link", u"2"}));
    EXPECT_EQ(ksp.index.Item(2).Url, u"http://x");
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("<url>http://x</url>"));
}

TEST_F(CProjectFileTest, Load_OfAUrlOnAnItemWithAPosition_IgnoresItAndSaveDropsIt) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0", "http://x"))));
    EXPECT_EQ(ksp.index.Item(1).Url, u"");
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_FALSE(Contains("http://x"));
}

TEST_F(CProjectFileTest, Load_ThenSave_LosesTheSizeOfAnItem) {
    ASSERT_TRUE(w.Load(ProjectText(ReplacedOnce(Item("1", "0"), "</item>", "<size>77</size></item>"))));
    EXPECT_EQ(ksp.index.Item(1).size, u"");
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_FALSE(Contains("<size>77</size>"));
}

TEST_F(CProjectFileTest, Save_WritesUrlThenSizeWhereTheyAreGiven) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "-1", "http://x"))));
    ksp.index.Item(1).size = u"77";
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("<pos>-1</pos>\r\n<url>http://x</url>\r\n<size>77</size>\r\n</item>"));
}

TEST_F(CProjectFileTest, Save_DropsItemsAtAndBeyondTheDuration) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0") + Item("2", "59999") + Item("3", "60000") + Item("4", "-1", "u"))));
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(w.Titles(), (Texts{u"1", u"2", u"4"}));
    EXPECT_FALSE(Contains("<pos>60000</pos>"));
}

TEST_F(CProjectFileTest, Save_BeforeAnyLoad_ShowsTheStepAndAnswersTrue) {
    EXPECT_TRUE(ksp.Save(ProjectWorld::kProjectFile));
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_EQ(box.Shown()[0].title, u"ksp.Save");
    EXPECT_EQ(box.Shown()[0].text.rfind(u"abstract: ", 0), 0U);
    EXPECT_FALSE(fs.FileExists(ProjectWorld::kProjectFile));
}

TEST_F(CProjectFileTest, Save_WritesATitleWithATabWithoutItAndLoadKeepsOneInMemory) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a\tb", "0"))));
    EXPECT_EQ(ksp.index.Item(1).title, u"a\tb");
    ksp.title = u"x\ty\vz";
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("<title>ab</title>"));
    EXPECT_TRUE(Contains("<title>xyz</title>"));
    EXPECT_EQ(ksp.title, u"x\ty\vz");
}

TEST_F(CProjectFileTest, Load_OfAnUnknownBitrate_TakesThatOfTheSizeAndWritesBack) {
    std::string text = ReplacedOnce(ProjectText(""), "<bitrate>96</bitrate>\n<size></size>",
                                    "<bitrate>128</bitrate><size>240x180</size>");
    ASSERT_TRUE(w.Load(text));
    EXPECT_EQ(ksp.videoBitrate, u"192");
    EXPECT_TRUE(Contains("<bitrate>192</bitrate>"));
}

TEST_F(CProjectFileTest, Load_OfAnUnknownBitrate_KnowsTheLargestAndTheSmallest) {
    const std::string text = ProjectText("");
    const std::string part = "<bitrate>96</bitrate>\n<size></size>";
    ASSERT_TRUE(w.Load(ReplacedOnce(text, part, "<bitrate></bitrate><size>320x240</size>")));
    EXPECT_EQ(ksp.videoBitrate, u"320");
    ASSERT_TRUE(w.Load(ReplacedOnce(text, part, "<bitrate>1</bitrate><size>160x120</size>")));
    EXPECT_EQ(ksp.videoBitrate, u"96");
}

TEST_F(CProjectFileTest, Load_OfAnUnknownSize_BecomesTheSmallestEvenWithAValidBitrate) {
    std::string text = ReplacedOnce(ProjectText(""), "<bitrate>96</bitrate>\n<size></size>",
                                    "<bitrate>320</bitrate><size> 640x480 </size>");
    ASSERT_TRUE(w.Load(text));
    EXPECT_EQ(ksp.videoSize, u"160x120");
    EXPECT_EQ(ksp.videoBitrate, u"96");
    EXPECT_TRUE(Contains("<size>160x120</size>"));
}

TEST_F(CProjectFileTest, Save_OfAFileUnder500Bytes_KeepsTheOldOne) {
    ASSERT_TRUE(
        w.Load("<k v='8.0'><project><abstract><title/><author/><manager/><company/><category/><keywords/>"
               "<comments/></abstract><configure><template/><photo s=''/><sound v=''/><showcursor/>"
               "<realcursor/><profile><audio><bitrate/></audio><video><bitrate>96</bitrate><size/><preview/>"
               "</video><screen><size/><name/></screen></profile></configure>"
               "<index duration='00:00'/></project></k>"));
    fs.Put(ProjectWorld::InWork(u"project.xml"), "old");
    EXPECT_FALSE(ksp.SaveToXml(ProjectWorld::InWork(u"project.xml")));
    EXPECT_EQ(w.Boxes(), Texts{u"Save 'project.ksp' error!"});
    EXPECT_EQ(fs.Bytes(ProjectWorld::InWork(u"project.xml")), "old");
    EXPECT_TRUE(fs.FileExists(ProjectWorld::InWork(u"project.xml.tmp")));
}

TEST_F(CProjectFileTest, Save_WhenTheOldFileCannotBeDeleted_LeavesTheNewOneBesideIt) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0"))));
    const std::string old = File();
    ksp.title = u"new";
    w.world.faults.FailCall(u"fs.DeleteFile", 1, sim::ForEver);
    EXPECT_FALSE(ksp.Save(u""));
    EXPECT_EQ(w.Boxes(), Texts{u"Save 'project.ksp' error! The updated project is saved as 'project.ksp.tmp'"});
    EXPECT_EQ(File(), old);
    EXPECT_NE(fs.Bytes(String(ProjectWorld::kProjectFile) + u".tmp").find("<title>new</title>"), std::string::npos);
}

TEST_F(CProjectFileTest, Save_ToANewName_Works) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0"))));
    EXPECT_TRUE(ksp.Save(ProjectWorld::InWork(u"other.ksp")));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_TRUE(fs.FileExists(ProjectWorld::InWork(u"other.ksp")));
    EXPECT_FALSE(fs.FileExists(ProjectWorld::InWork(u"other.ksp.tmp")));
    EXPECT_EQ(ksp.fileName, ProjectWorld::kProjectFile);
}

TEST_F(CProjectFileTest, Save_WhenTheDiskIsFull_TellsTheStepAndKeepsTheOldFile) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0"))));
    const std::string old = File();
    w.world.faults.FailCall(u"fs.WriteFile", 1, sim::Once);
    EXPECT_TRUE(ksp.Save(u""));
    ASSERT_EQ(box.Shown().size(), 1U);
    EXPECT_EQ(box.Shown()[0].text.rfind(u"Save FileName: ", 0), 0U);
    EXPECT_EQ(File(), old);
}

TEST_F(CProjectFileTest, Save_PutsOneTagALineAndNothingElse) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0"))));
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(
        Contains("<item>\r\n<title>1</title>\r\n<recdate>2024/3/7 09:05:00</recdate>\r\n<pos>0</pos>\r\n"
                 "</item>\r\n</index>\r\n</project>\r\n</kestrum>"));
    EXPECT_EQ(File().find("> "), std::string::npos) << "nothing is indented";
    const std::string once = File();
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(File(), once);
}

TEST_F(CProjectFileTest, Save_KeepsTextsThatLookLikeTagsOrHoldLineBreaks) {
    ASSERT_TRUE(w.Load(ProjectText("")));
    const String title = u"a><b & \"c\" \r d";
    const String comments = u"first\r\nsecond 中文 \xD83D\xDE00";
    ksp.comments = comments;
    ksp.AddIndex(title, u"0", u"", u"", u"", u"", false, 0);
    ASSERT_TRUE(ksp.Save(u""));
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(ksp.index.Item(1).title, title);
    EXPECT_EQ(ksp.comments, comments);
}

TEST_F(CProjectFileTest, Save_PutsTheIndexLastWithDurationBeforeType) {
    const std::string text = ReplacedOnce(ProjectText(""), R"(<index duration="01:00" type="OL"></index>)", "");
    ASSERT_TRUE(w.Load(ReplacedOnce(text, "<abstract>", R"(<index type="UL" duration="01:00"/><abstract>)")));
    EXPECT_EQ(ksp.indexType, u"UL");
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("</scipinfo>\r\n<index duration=\"01:00\" type=\"UL\""));
}

TEST_F(CProjectFileTest, ScreenName_GoesThroughTheHexadecimalForm) {
    ASSERT_TRUE(w.Load(ProjectText("")));
    ksp.screenName = u"A";
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("<name>&amp;H4100</name>"));
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(ksp.screenName, u"A");
}

TEST_F(CProjectFileTest, ScreenName_OfPlainText_IsReadAsEmpty) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(""), "<name></name>", "<name>Screen</name>")));
    EXPECT_EQ(ksp.screenName, u"");
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, Load_WithoutCursorFlagOrScreenName_AddsThemSilently) {
    std::string text = ReplacedOnce(ProjectText(""), "<name></name>", "");
    ASSERT_TRUE(w.Load(ReplacedOnce(text, "<showcursor>1</showcursor>", "")));
    EXPECT_EQ(w.Boxes(), Texts{});
    EXPECT_EQ(ksp.showcursor, u"1");
    EXPECT_EQ(fs.Bytes(ProjectWorld::InWork(u"ksc.js")), InstallFile("encfiles/ksc.js"));
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("<showcursor>1</showcursor>"));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, ScipInfo_WhenItIsMissing_HasDefaultsAndIsCreatedOnSave) {
    std::string text = ProjectText("");
    const std::size_t from = text.find("<scipinfo>"), to = text.find("</scipinfo>");
    text.erase(from, to + 11 - from);
    ksp.serverUrl = u"left over";
    ASSERT_TRUE(w.Load(text));
    EXPECT_EQ(ksp.serverUrl, u"");
    EXPECT_EQ(ksp.contentID, u"0");
    ksp.serverUrl = u"course.example";
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(Contains("<scipinfo>\r\n<server>\r\n<url>course.example</url>"));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, ScipInfo_PartlyPresent_GetsASecondOneBesideIt) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(""), "<folderID></folderID>", "")));
    EXPECT_EQ(ksp.contentID, u"0");
    ASSERT_TRUE(ksp.Save(u""));
    const std::size_t first = File().find("<scipinfo>");
    EXPECT_NE(File().find("<scipinfo>", first + 1), std::string::npos);
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, Load_WithoutADuration_DoesNotTakeThatOfAnotherFile) {
    ASSERT_TRUE(w.Load(ProjectText("", "00:01")));
    for (int i = 0; i < 5; ++i) box.Answer(BoxAnswer::Ok);
    w.Load(ReplacedOnce(ProjectText(Item("1", "0") + Item("2", "5000")), " duration=\"01:00\"", ""));
    EXPECT_EQ(w.Titles(), (Texts{u"1", u"2"}));
    EXPECT_TRUE(Contains("<pos>5000</pos>"));
}

TEST_F(CProjectFileTest, Duration_IsKeptAsTimeText) {
    ksp.SetDuration(3661250);
    EXPECT_EQ(ksp.durationText, u"1:01:01.250");
    EXPECT_EQ(ksp.duration(), 3661250);
}

TEST_F(CProjectFileTest, AddIndex_InsertsInFrontOfAnExistingItemElseAppends) {
    ksp.AddIndex(u"b", u"1", u"", u"", u"", u"", false, 0);
    ksp.AddIndex(u"a", u"0", u"", u"", u"", u"", false, 1);
    ksp.AddIndex(u"c", u"2", u"", u"", u"", u"", false, 3);
    ksp.AddIndex(u"d", u"3", u"", u"", u"", u"", false, -1);
    EXPECT_EQ(w.Titles(), (Texts{u"a", u"b", u"c", u"d"}));
}

TEST_F(CProjectFileTest, RemoveIndex_RemovesOneOrAll) {
    ksp.AddIndex(u"a", u"0", u"", u"", u"", u"", false, 0);
    ksp.AddIndex(u"b", u"1", u"", u"", u"", u"", false, 0);
    ksp.RemoveIndex(1);
    EXPECT_EQ(w.Titles(), Texts{u"b"});
    EXPECT_THROW(ksp.RemoveIndex(2), host::Error);
    ksp.RemoveIndex(-99);
    EXPECT_EQ(w.Titles(), Texts{});
}

TEST_F(CProjectFileTest, SetLastItem_OverwritesAllButAnUrlThatIsNotGiven) {
    ksp.AddIndex(u"a", u"0", u"d", u"http://x", u"", u"", false, 0);
    ksp.SetLastItem(u"b", u"7", u"e", u"", u"", u"", false, 0);
    const CIndexItem& last = ksp.index.Item(1);
    EXPECT_EQ(last.title + last.pos + last.RecDate + last.Url, u"b7ehttp://x");
    ksp.SetLastItem(u"b", u"7", u"e", u"http://y", u"", u"", false, 0);
    EXPECT_EQ(last.Url, u"http://y");
    ksp.SetTitle(1, u"renamed");
    EXPECT_EQ(last.title, u"renamed");
}

TEST_F(CProjectFileTest, SetLastItem_OnAnEmptyList_Fails) {
    EXPECT_THROW(ksp.SetLastItem(u"", u"", u"", u"", u"", u"", false, 0), host::Error);
}

TEST_F(CProjectFileTest, SaveToXml_LiftsThePartsToTheRoot) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0"))));
    ksp.screenName = u"changed";
    ASSERT_TRUE(ksp.SaveToXml(ProjectWorld::InWork(u"project.xml")));
    const std::string xml = fs.Bytes(ProjectWorld::InWork(u"project.xml"));
    EXPECT_EQ(xml.find("<project>"), std::string::npos);
    EXPECT_EQ(xml.find("</project>"), std::string::npos);
    EXPECT_NE(xml.find("<kestrum ver=\"8.0\">"), std::string::npos);
    EXPECT_NE(xml.find("<pos>0</pos>"), std::string::npos);
    EXPECT_EQ(xml.find("&amp;H"), std::string::npos) << "the screen's part is not written";
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileTest, SaveToXml_KeepsATitleThatLooksLikeTheLiftedTag) {
    ASSERT_TRUE(w.Load(ProjectText("")));
    ksp.AddIndex(u"the <project> and </project>", u"0", u"", u"", u"", u"", false, 0);
    ASSERT_TRUE(ksp.SaveToXml(ProjectWorld::InWork(u"project.xml")));
    const std::string xml = fs.Bytes(ProjectWorld::InWork(u"project.xml"));
    EXPECT_NE(xml.find("<title>the &lt;project&gt; and &lt;/project&gt;</title>"), std::string::npos);
}

TEST_F(CProjectFileTest, SaveToXml_OfAProjectElementWithAttributes_FailsAndWritesNothing) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(""), "<project>", "<project id=\"1\">")));
    EXPECT_TRUE(ksp.SaveToXml(ProjectWorld::InWork(u"project.xml")));
    EXPECT_EQ(w.Boxes().size(), 1U);
    EXPECT_FALSE(fs.FileExists(ProjectWorld::InWork(u"project.xml")));
}

TEST_F(CProjectFileTest, Save_UnderAnyFault_LeavesTheOldOrTheNewFileWhole) {
    int faults = 0;
    for (const sim::Times times : {sim::Once, sim::ForEver}) {
        for (int n = 1;; ++n) {
            ProjectWorld desk;
            ASSERT_TRUE(desk.Load(ProjectText(Item("1", "0"))));
            ASSERT_TRUE(desk.project.g_Project.Save(u""));
            const std::string old = desk.world.fs.Bytes(ProjectWorld::kProjectFile);
            desk.project.g_Project.AddIndex(u"2", u"5000", u"", u"", u"", u"", false, 0);
            desk.world.faults.FailCall(u"fs.*", n, times);
            desk.project.g_Project.Save(u"");
            if (desk.world.faults.Injected().empty()) break;
            ++faults;
            const std::string file = desk.world.fs.Bytes(ProjectWorld::kProjectFile);
            const std::string tmp = desk.world.fs.Bytes(String(ProjectWorld::kProjectFile) + u".tmp");
            const auto isNew = [](const std::string& text) {
                return text.find("<pos>5000</pos>") != std::string::npos &&
                       text.find("</kestrum>") != std::string::npos;
            };
            EXPECT_TRUE(file == old || isNew(file) || (file.empty() && isNew(tmp))) << "fault " << n;
        }
    }
    EXPECT_GE(faults, 4);
}

}  // namespace
}  // namespace kestrum
