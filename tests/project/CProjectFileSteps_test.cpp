// What is missing or wrong in a project file, value by value: which step the user is told, what the field keeps, and
// what a save does then.
#include <gtest/gtest.h>

#include "ProjectWorld.h"
#include "project/modKspXml.h"

namespace kestrum {
namespace {

using host::BoxAnswer;
using test::InstallFile;
using test::Item;
using test::ProjectText;
using test::ProjectWorld;
using test::ReplacedOnce;
using Texts = std::vector<String>;

/// An element that a file lacks.
struct Lack {
    std::string element;
    String loadStep;
    String saveStep;
};

const Lack kLacks[] = {
    {"<title>Kestrum Title</title>", u"abstract", u"abstract"},
    {"<author></author>", u"abstract", u"abstract"},
    {"<manager></manager>", u"abstract", u"abstract"},
    {"<company></company>", u"abstract", u"abstract"},
    {"<category></category>", u"abstract", u"abstract"},
    {"<keywords></keywords>", u"abstract", u"abstract"},
    {"<comments></comments>", u"abstract", u"abstract"},
    {"<template>default</template>", u"configure", u"configure"},
    {" size=\"160x120\"", u"configure", u"configure"},
    {" volume=\"3\"", u"configure", u"configure"},
    {"<realcursor>0</realcursor>", u"configure", u"configure"},
    {"<bitrate>32</bitrate>", u"Configure.profile.audio", u"configure.profile.audio"},
    {"<bitrate>96</bitrate>", u"Configure.profile.video", u"configure.profile.video"},
    {"<preview>0</preview>", u"Configure.profile.video", u"configure.profile.video"},
};

class CProjectFileStepsTest : public testing::Test {
  protected:
    std::string File() const { return fs.Bytes(ProjectWorld::kProjectFile); }

    ProjectWorld w;
    CProjectFile& ksp = w.project.g_Project;
    sim::FileSystem& fs = w.world.fs;
    sim::MessageBox& box = w.world.box;
};

TEST_F(CProjectFileStepsTest, Load_WithoutAValue_AsksWithTheTextsOfTheLanguageFileAndNothingElse) {
    fs.Put(ProjectWorld::InInstall(u"res.xml"), InstallFile("res.xml"));
    box.Answer(BoxAnswer::Cancel);
    EXPECT_FALSE(w.Load(ReplacedOnce(ProjectText(""), "<author></author>", "")));
    EXPECT_EQ(w.Boxes(), Texts{u"The project file cannot be read at this place: abstract\r\nChoose OK to go on without "
                               u"what cannot be read; the rest of the lecture is kept. Choose Cancel to leave the file "
                               u"as it is."});
}

TEST_F(CProjectFileStepsTest, Load_WithoutAValue_NamesTheStepAndCancelLeavesTheFile) {
    for (const Lack& lack : kLacks) {
        const std::string text = ReplacedOnce(ProjectText(Item("a", "0")), lack.element, "");
        box.Answer(BoxAnswer::Cancel);
        EXPECT_FALSE(w.Load(text)) << lack.element;
        EXPECT_EQ(box.Shown().back().text, u" " + lack.loadStep + u"\r\n") << lack.element;
        EXPECT_EQ(box.Shown().back().title, u"Load project.ksp");
        EXPECT_EQ(box.Shown().back().buttons, host::BoxButtons::OkCancel);
        EXPECT_EQ(File(), text);
    }
}

TEST_F(CProjectFileStepsTest, Load_WithoutAValue_GoesOnAtOkWithTheDefault_AndTheSaveTellsWhatIsMissing) {
    ASSERT_TRUE(w.Load(InstallFile("default.ksp")));
    for (const Lack& lack : kLacks) {
        ProjectWorld desk;
        const std::string text = ReplacedOnce(ProjectText(Item("a", "0")), lack.element, "");
        desk.world.box.Answer(BoxAnswer::Ok);
        EXPECT_TRUE(desk.Load(text)) << lack.element;
        EXPECT_EQ(desk.Titles(), Texts{u"a"}) << "a failure in the settings never costs the first entry";
        ASSERT_EQ(desk.Boxes().size(), 2U) << lack.element;
        EXPECT_EQ(desk.world.box.Shown()[1].title, u"ksp.Save");
        EXPECT_EQ(desk.world.box.Shown()[1].text.rfind(lack.saveStep + u": ", 0), 0U) << lack.element;
        EXPECT_GT(desk.world.box.Shown()[1].text.size(), lack.saveStep.size() + 2) << "the failure's own sentence";
        EXPECT_EQ(desk.world.fs.Bytes(ProjectWorld::kProjectFile), text) << "the old file stays";
        const CProjectFile& read = desk.project.g_Project;
        const auto fields = [](const CProjectFile& p) {
            return p.title + u"|" + p.template_ + u"|" + p.photoSize + u"|" + p.soundVolume + u"|" + p.realcursor +
                   u"|" + p.audioBitrate + u"|" + p.videoBitrate + u"|" + p.videoPreview;
        };
        EXPECT_EQ(fields(read), fields(ksp)) << lack.element;
    }
}

TEST_F(CProjectFileStepsTest, SaveMended_MakesWhatTheDocumentLacks) {
    for (const Lack& lack : kLacks) {
        ProjectWorld desk;
        CProjectFile& project = desk.project.g_Project;
        desk.world.box.AnswerAll();
        ASSERT_TRUE(desk.Load(ReplacedOnce(ProjectText(Item("a", "0")), lack.element, "")));
        project.AddIndex(u"recorded", u"5000", u"", u"", u"", u"", false, 0);
        const std::size_t boxes = desk.Boxes().size();
        project.SaveMended();
        EXPECT_EQ(project.WrittenTo(), ProjectWorld::kProjectFile);
        EXPECT_TRUE(project.Load(ProjectWorld::kProjectFile)) << lack.element;
        EXPECT_EQ(desk.Boxes().size(), boxes) << lack.element;
        EXPECT_EQ(desk.Titles(), (Texts{u"a", u"recorded"}));
    }
}

TEST_F(CProjectFileStepsTest, SaveMended_OfADocumentThatHasNothingButItsRoot_MakesAll) {
    box.AnswerAll();
    w.Load("<kestrum ver=\"8.0\"/>");
    ksp.SetDuration(60000);
    ksp.AddIndex(u"recorded", u"5000", u"", u"", u"", u"", false, 0);
    ksp.SaveMended();
    const std::size_t boxes = w.Boxes().size();
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(w.Boxes().size(), boxes);
    EXPECT_EQ(w.Titles(), Texts{u"recorded"});
    EXPECT_EQ(ksp.photoSize, u"160x120");
}

TEST_F(CProjectFileStepsTest, SaveMended_WithoutADuration_KeepsEveryEntry) {
    box.AnswerAll();
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a", "0") + Item("b", "5000")), " duration=\"01:00\"", "")));
    EXPECT_EQ(w.Boxes().back().rfind(u"CreateElement index: ", 0), 0U);
    ksp.SaveMended();
    EXPECT_NE(File().find("<pos>5000</pos>"), std::string::npos);
    EXPECT_EQ(w.Titles(), (Texts{u"a", u"b"}));
}

TEST_F(CProjectFileStepsTest, Load_WithoutAnIndex_AsksTwiceAndHasNoEntries) {
    box.Answer(BoxAnswer::Ok);
    box.Answer(BoxAnswer::Ok);
    ksp.AddIndex(u"of another lecture", u"0", u"", u"", u"", u"", false, 0);
    EXPECT_TRUE(w.Load(ReplacedOnce(ProjectText(""), R"(<index duration="01:00" type="OL"></index>)", "")));
    ASSERT_GE(w.Boxes().size(), 2U);
    EXPECT_EQ(w.Boxes()[0], u" index.duration\r\n");
    EXPECT_EQ(w.Boxes()[1], u" index.duration\r\n");
    EXPECT_EQ(w.Titles(), Texts{});
}

TEST_F(CProjectFileStepsTest, Load_WithoutAType_IsAnOrderedListSilently) {
    ksp.indexType = u"UL";
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a", "0")), " type=\"OL\"", "")));
    EXPECT_EQ(ksp.indexType, u"OL");
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileStepsTest, Load_FindsTypeAndDurationByNameInAnyOrder) {
    ASSERT_TRUE(w.Load(
        ReplacedOnce(ProjectText(""), "duration=\"01:00\" type=\"OL\"", "x=\"y\" type=\"UL\" duration=\"00:07\"")));
    EXPECT_EQ(ksp.indexType, u"UL");
    EXPECT_EQ(ksp.duration(), 7000);
}

TEST_F(CProjectFileStepsTest, Load_OfAnEntryWithoutAPart_LeavesItOutAndSaysWhichPart) {
    const struct {
        std::string part;
        String step;
    } parts[] = {{"<title>b</title>", u"index.item(i).title"},
                 {"<pos>5000</pos>", u"index.item(i).pos"},
                 {"<recdate>2024/3/7 09:05:00</recdate>", u"index.item(i).recdate"}};
    for (const auto& [part, step] : parts) {
        ProjectWorld desk;
        desk.world.box.Answer(BoxAnswer::Ok);
        const std::string broken = ReplacedOnce(Item("b", "5000"), part, "");
        ASSERT_TRUE(desk.Load(ProjectText(Item("a", "0") + broken + Item("c", "6000")))) << part;
        EXPECT_EQ(desk.Boxes(), Texts{u" " + step + u"\r\n"});
        EXPECT_EQ(desk.Titles(), (Texts{u"a", u"c"}));
        EXPECT_EQ(desk.world.fs.Bytes(ProjectWorld::kProjectFile).find("5000"), std::string::npos) << "written back";
    }
}

TEST_F(CProjectFileStepsTest, Load_OfALinkWithoutAUrl_LeavesItOut) {
    box.Answer(BoxAnswer::Ok);
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0") + Item("link", "-1"))));
    EXPECT_EQ(w.Boxes(), Texts{u" index.item(i).url\r\n"});
    EXPECT_EQ(w.Titles(), Texts{u"a"});
}

TEST_F(CProjectFileStepsTest, Load_TakesAUrlForExactlyMinusOneOnly) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a", " -1", "http://x") + Item("b", "-1.0", "http://x") +
                                   Item("player", "-65000", "vplayer") + Item("link", "-1", "http://x"))));
    EXPECT_EQ(w.Boxes(), Texts{});
    ASSERT_EQ(ksp.index.Count(), 4);
    EXPECT_EQ(ksp.index.Item(1).Url + ksp.index.Item(2).Url + ksp.index.Item(3).Url, u"");
    EXPECT_EQ(ksp.index.Item(1).pos, u" -1") << "the text of the file";
    EXPECT_EQ(ksp.index.Item(4).Url, u"http://x");
}

TEST_F(CProjectFileStepsTest, Load_AfterAWrongPosition_ComparesWithThatOne) {
    box.AnswerAll();
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "9000") + Item("2", "3000") + Item("3", "4000") + Item("4", "3999"))));
    EXPECT_EQ(w.Titles(), (Texts{u"1", u"3"}));
}

TEST_F(CProjectFileStepsTest, Load_OfEqualPositions_AsksNothing) {
    ASSERT_TRUE(w.Load(ProjectText(Item("1", "0") + Item("2", "0") + Item("3", "0"))));
    EXPECT_EQ(w.Titles().size(), 3U);
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileStepsTest, Load_CountsEveryElementOfTheIndexAsAnEntry) {
    const std::string other = "<slide><title>b</title><recdate/><pos>1</pos></slide>";
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0") + "<!-- note -->" + other)));
    EXPECT_EQ(w.Titles(), (Texts{u"a", u"b"}));
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileStepsTest, Load_WithoutAVersion_AsksForItAndForItsMajor) {
    box.Answer(BoxAnswer::Ok);
    box.Answer(BoxAnswer::Cancel);
    EXPECT_FALSE(w.Load(ReplacedOnce(ProjectText(""), " ver=\"8.0\"", "")));
    EXPECT_EQ(w.Boxes(), (Texts{u" set default value\r\n", u" set default value\r\n"}));
}

TEST_F(CProjectFileStepsTest, Load_OfAVersionThatIsNoDigit_GoesOnAtOk) {
    box.Answer(BoxAnswer::Ok);
    EXPECT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a", "0")), "ver=\"8.0\"", "ver=\"v8\"")));
    EXPECT_EQ(w.Titles(), Texts{u"a"});
    EXPECT_EQ(ksp.ver, u"v8");
}

TEST_F(CProjectFileStepsTest, Load_OfPaddedSettings_TrimsWhereTheFormatSaysSo) {
    std::string text = ReplacedOnce(ProjectText(""), "<bitrate>32</bitrate>", "<bitrate> 48 </bitrate>");
    text = ReplacedOnce(text, "<bitrate>96</bitrate>\n<size></size>", "<bitrate> 192 </bitrate><size> 240x180 </size>");
    text = ReplacedOnce(text, "<screen>\n<size></size>", "<screen><size> 800x600 </size>");
    text = ReplacedOnce(text, "<url></url>\n<folderID></folderID>\n<contentID>0</contentID>",
                        "<url> u </url><folderID> 5 </folderID><contentID> 6 </contentID>");
    ASSERT_TRUE(w.Load(ReplacedOnce(text, "<template>default", "<template> default ")));
    EXPECT_EQ(ksp.audioBitrate + ksp.videoBitrate + ksp.videoSize + ksp.screenSize, u"48192240x180800x600");
    EXPECT_EQ(ksp.serverUrl + ksp.folderID + ksp.contentID, u"u56");
    EXPECT_EQ(ksp.template_, u" default ");
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(CProjectFileStepsTest, Load_WithoutCursorFlagOrScreenName_DoesNotWriteTheFile) {
    const std::string text =
        ReplacedOnce(ReplacedOnce(ProjectText(""), "<showcursor>1</showcursor>", ""), "<name></name>", "");
    ASSERT_TRUE(w.Load(text));
    EXPECT_EQ(File(), text);
}

TEST_F(CProjectFileStepsTest, Load_OfAnOlderProject_WritesNothingAndEmptiesNoList) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0"))));
    const std::string old = ReplacedOnce(ProjectText(Item("b", "0")), "8.0", "7.9");
    EXPECT_FALSE(w.Load(old));
    EXPECT_EQ(File(), old);
    EXPECT_EQ(ksp.ver, u"7.9");
    EXPECT_EQ(ksp.videoBitrate, u"96");
}

TEST_F(CProjectFileStepsTest, Save_OfAnUnreadableDuration_TellsAndKeepsTheOldFile) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0"))));
    const std::string old = File();
    ksp.durationText = u"long";
    EXPECT_TRUE(ksp.Save(u""));
    EXPECT_EQ(box.Shown().back().title, u"ksp.Save");
    EXPECT_EQ(File(), old);
    EXPECT_EQ(ksp.WrittenTo(), u"");
}

TEST_F(CProjectFileStepsTest, Save_OfAPositionThatIsNoNumber_TellsTheEntryStep) {
    ASSERT_TRUE(w.Load(ProjectText("")));
    ksp.AddIndex(u"a", u"soon", u"", u"", u"", u"", false, 0);
    EXPECT_TRUE(ksp.Save(u""));
    EXPECT_EQ(w.Boxes().back().rfind(u"index.item(i): ", 0), 0U);
}

TEST_F(CProjectFileStepsTest, Save_BeforeAnyLoad_DropsNothingBeyondTheEnd) {
    // An object whose Load was refused holds no document; one that never loaded drops nothing even then.
    CProjectFile fresh(w.base);
    fresh.durationText = u"00:01";
    fresh.AddIndex(u"a", u"5000", u"", u"", u"", u"", false, 0);
    EXPECT_TRUE(fresh.Save(ProjectWorld::kProjectFile));
    EXPECT_EQ(fresh.index.Count(), 1);
}

TEST_F(CProjectFileStepsTest, Load_OfAMissingFile_MakesTheNextSaveDropWhatLiesBeyond) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0"))));
    EXPECT_FALSE(ksp.Load(ProjectWorld::InWork(u"none.ksp")));
    EXPECT_EQ(ksp.fileName, ProjectWorld::kProjectFile);
    ksp.AddIndex(u"b", u"60000", u"", u"", u"", u"", false, 0);
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(w.Titles(), Texts{u"a"});
}

TEST_F(CProjectFileStepsTest, Save_DropsManyEntriesBetweenLinksInOrder) {
    ASSERT_TRUE(w.Load(ProjectText("", "00:10")));
    for (int i = 0; i < 30; ++i) {
        ksp.AddIndex(u"m" + ToText(i), ToText(i * 1000), u"", u"", u"", u"", false, 0);
        ksp.AddIndex(u"l" + ToText(i), u"-1", u"", u"u", u"", u"", false, 0);
    }
    ksp.AddIndex(u"player", u"-65000", u"", u"vplayer", u"", u"", false, 0);
    ASSERT_TRUE(ksp.Save(u""));
    ASSERT_EQ(ksp.index.Count(), 10 + 30 + 1);
    EXPECT_EQ(ksp.index.Item(19).title, u"m9");
    EXPECT_EQ(ksp.index.Item(21).title, u"l10");
    EXPECT_EQ(ksp.index.Item(41).title, u"player");
}

TEST_F(CProjectFileStepsTest, Save_UnderAnotherName_NeverChangesTheStoredOne) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0"))));
    ASSERT_TRUE(ksp.Save(ProjectWorld::InWork(u"snapshot")));
    EXPECT_EQ(ksp.fileName, ProjectWorld::kProjectFile);
    ksp.title = u"later";
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_NE(File().find("<title>later</title>"), std::string::npos);
    EXPECT_EQ(fs.Bytes(ProjectWorld::InWork(u"snapshot")).find("later"), std::string::npos);
}

TEST_F(CProjectFileStepsTest, SaveToXml_Of500Bytes_IsEnoughAndOneLessIsNot) {
    const std::string shape =
        "<k "
        "v='8.0'><project><abstract><title/><author/><manager/><company/><category/><keywords/><comments/></abstract>"
        "<configure><template/><photo s=''/><sound v=''/><showcursor/><realcursor/><profile><audio><bitrate/></audio>"
        "<video><bitrate>96</bitrate><size/><preview/></video><screen><size/><name/></screen></profile></configure>"
        "<index duration='00:00'/></project></k>";
    const String xml = ProjectWorld::InWork(u"project.xml");
    const auto save = [&](std::size_t authorLength) {  // an object is finished afterwards
        ASSERT_TRUE(w.Load(shape));
        ksp.author = String(authorLength, u'x');
        ksp.SaveToXml(xml);
    };
    save(400);
    const std::size_t length = 400 - (fs.Bytes(xml).size() - 500);
    save(length);
    EXPECT_EQ(fs.Bytes(xml).size(), 500U);
    EXPECT_EQ(ksp.WrittenTo(), xml);
    EXPECT_EQ(w.Boxes(), Texts{});
    save(length - 1);
    EXPECT_EQ(w.Boxes(), Texts{u"Save 'project.ksp' error!"});
    EXPECT_EQ(fs.Bytes(xml).size(), 500U) << "the old file stays as it is";
    EXPECT_EQ(fs.Bytes(xml + u".tmp").size(), 499U) << "with the short one beside it";
    EXPECT_EQ(ksp.WrittenTo(), u"");
}

TEST_F(CProjectFileStepsTest, Load_OfAHundredThousandEntries_ReadsAndWritesEachFileOnce) {
    std::string items;
    for (int i = 0; i < 100000; ++i) items += Item("slide", std::to_string(i));
    ASSERT_TRUE(w.Load(ProjectText(items, "10:00")));
    EXPECT_EQ(ksp.index.Count(), 100000);
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(w.world.faults.CountOf(u"fs.ReadFile"), 1);
    EXPECT_EQ(w.world.faults.CountOf(u"fs.WriteFile"), 1);
    EXPECT_EQ(w.world.faults.CountOf(u"fs.MoveFile"), 1);
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(ksp.index.Item(100000).pos, u"99999");
}

TEST_F(CProjectFileStepsTest, Template_BeginsWithTheProgramsVersionAndHoldsTheFormatsMajor) {
    const modXml::Document document = modXml::Document::ParseBytes(InstallFile("default.ksp"));
    const String version = document.Root().Attribute(u"ver").value_or(u"");
    EXPECT_EQ(version, document.Root().AttributeAt(0));
    EXPECT_EQ(version.substr(0, 1), ToText(CProjectFile::kMajorVersion));
    EXPECT_EQ(version.substr(0, 1), u"8");
    EXPECT_TRUE(modKspXml::SelectXmlPath(document, u"project.configure.profile.audio.codec"));
}

}  // namespace
}  // namespace kestrum
