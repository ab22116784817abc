// The texts that the package library reads and writes: journal lines, and the index inside a project file.

#include <gtest/gtest.h>

#include "PackageSamples.h"
#include "media/package/Journal.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {
namespace {

using namespace test;

TEST(PackageJournal, EveryTextComesBack) {
    const std::vector<JournalEntry> entries{{0, "2026/1/2 03:04:05", "Tab\there, line\nbreak, \r and \\ and \\t", ""},
                                            {-1, "", "第一讲", "http://example.org/?a=b"},
                                            {2147483647, "x", "", ""}};
    const std::vector<JournalEntry> read = ParseJournal(FormatJournal(entries));
    ASSERT_EQ(read.size(), 3u);
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].pos, entries[i].pos);
        EXPECT_EQ(read[i].recDate, entries[i].recDate);
        EXPECT_EQ(read[i].title, entries[i].title);
        EXPECT_EQ(read[i].url, entries[i].url);
    }
}

TEST(PackageJournal, Lines_HaveTheAgreedForm) {
    EXPECT_EQ(FormatJournal({{5000, "d", "a\tb", "u"}}), "5000\td\ta\\tb\tu\n");
}

TEST(PackageJournal, OddLines_CostOnlyThemselves) {
    const auto read = ParseJournal("nonsense\n\n12\n34x\td\tt\n56\td\tt\\q\\\n78\td\tt\tu\textra\r\n90\td");
    ASSERT_EQ(read.size(), 4u);
    EXPECT_EQ(read[0].pos, 12);
    EXPECT_EQ(read[1].title, "t\\q\\");
    EXPECT_EQ(read[2].url, "u");
    EXPECT_EQ(read[3].pos, 90);
    EXPECT_TRUE(ParseJournal("").empty());
}

TEST(PackageProject, DurationTexts_AreThoseOfTheProjectFile) {
    EXPECT_EQ(DurationText(0), "00:00");
    EXPECT_EQ(DurationText(5000), "00:05");
    EXPECT_EQ(DurationText(5250), "00:05.250");
    EXPECT_EQ(DurationText(59'999), "00:59.999");
    EXPECT_EQ(DurationText(3'661'000), "1:01:01");
    EXPECT_EQ(DurationText(36'000'007), "10:00:00.007");
}

TEST(PackageProject, ReplacedIndex_LeavesTheRestAsItWas) {
    const auto merged =
        ReplaceIndex(ProjectFile({7}), ParseJournal("0\td\tA <b> & \\t\"c\"\t\n2000\te\t第\tu\n"), 3500);
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->entries, 2);
    EXPECT_EQ(AsText(merged->projectFile),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<ksproject ver=\"8.0\">\r\n<project>\r\n<abstract>\r\n"
              "<title>Lecture</title>\r\n<author>Ann &amp; Bob</author>\r\n</abstract>\r\n"
              "<index duration=\"00:03.500\" type=\"OL\">\r\n"
              "<item>\r\n<title>A &lt;b&gt; &amp; \"c\"</title>\r\n<recdate>d</recdate>\r\n<pos>0</pos>\r\n</item>\r\n"
              "<item>\r\n<title>第</title>\r\n<recdate>e</recdate>\r\n<pos>2000</pos>\r\n<url>u</url>\r\n</item>\r\n"
              "</index>\r\n</project>\r\n</ksproject>");
}

TEST(PackageProject, EntryAtTheVeryEnd_HasNoMedia) {
    const auto merged = ReplaceIndex(ProjectFile({}), ParseJournal("0\n2999\n3000\n-1\n"), 3000);
    ASSERT_TRUE(merged);
    EXPECT_EQ(IndexOf(merged->projectFile), "00:03|0|2999|-1");
    EXPECT_EQ(merged->entriesWithoutMedia, 1);
}

TEST(PackageProject, LineBreaksInTexts_StayAsTheyAre) {
    const std::string text =
        "<r ver=\"8\"><project><abstract><comments>a\r\nb\nc</comments></abstract><index duration=\"\"/></project></r>";
    const auto merged = SetDuration(AsBytes(text), 1000);
    ASSERT_TRUE(merged);
    EXPECT_NE(AsText(merged->projectFile).find("<comments>a\r\nb\nc</comments>"), std::string::npos);
    EXPECT_NE(AsText(merged->projectFile).find("<index duration=\"00:01\"/>"), std::string::npos);
}

TEST(PackageProject, ParagraphsOfATitle_SurviveARecovery) {
    const std::string text =
        "<r ver=\"8\"><project><index "
        "duration=\"\"><item><title>a&#13;b</title><pos>0</pos></item></index></project></r>";
    const auto added = AddToIndex(AsBytes(text), ParseJournal("500\td\tc\\rd\t\n"), 1000);
    ASSERT_TRUE(added);
    EXPECT_NE(AsText(added->projectFile).find("<title>a&#13;b</title>"), std::string::npos);
    EXPECT_NE(AsText(added->projectFile).find("<title>c&#13;d</title>"), std::string::npos);
}

TEST(PackageProject, FileWithoutAnIndex_GetsOne) {
    const auto merged = ReplaceIndex(AsBytes("<r ver=\"8\"><project/></r>"), ParseJournal("0\td\tt\t\n"), 1000);
    ASSERT_TRUE(merged);
    EXPECT_EQ(IndexOf(merged->projectFile), "00:01|0");
}

TEST(PackageProject, IndexNestedAMillionLevelsDeep_IsReplacedAllTheSame) {
    std::string text = "<r ver=\"8\"><project><index duration=\"00:01\">";
    for (int i = 0; i < 1'000'000; ++i) text += "<n>";
    for (int i = 0; i < 1'000'000; ++i) text += "</n>";
    const auto merged = ReplaceIndex(AsBytes(text + "</index></project></r>"), ParseJournal("0\td\tt\t\n"), 1000);
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->entries, 1);
    EXPECT_LT(merged->projectFile.size(), 500u);
}

TEST(PackageProject, WhatIsNoProject_IsNotTouched) {
    for (const char* text : {"", "text", "<r>", "<r/>", "<project><index/></project>"})
        EXPECT_FALSE(ReplaceIndex(AsBytes(text), ParseJournal("0\n"), 1000)) << text;
    EXPECT_TRUE(ChapterMarksOf(AsBytes("text")).empty());
}

TEST(PackageProject, ChapterMarks_AreTheEntriesWithAPlace) {
    const auto marks = ChapterMarksOf(ProjectFile({0, -1, 5000}));
    ASSERT_EQ(marks.size(), 2u);
    EXPECT_EQ(marks[1].ms, 5000);
    EXPECT_EQ(marks[1].title, "Slide 3");
}

}  // namespace
}  // namespace kestrum::media
