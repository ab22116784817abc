#include "project/modKspXml.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"

namespace kestrum {
namespace {

using test::ProjectWorld;

TEST(BreakLines, PutsABreakBetweenTagsOnly) {
    EXPECT_EQ(modKspXml::BreakLines("<a><b>x</b><c/></a>"), "<a>\r\n<b>x</b>\r\n<c/>\r\n</a>");
    EXPECT_EQ(modKspXml::BreakLines("<a> <b/></a>"), "<a> <b/>\r\n</a>");
    EXPECT_EQ(modKspXml::BreakLines(""), "");
}

TEST(BreakLines, OfALongText_TakesOnePass) {
    std::string text;
    for (int i = 0; i < 200000; ++i) text += "<a>";
    EXPECT_EQ(modKspXml::BreakLines(text).size(), text.size() + 2 * 199999);
}

TEST(SelectXmlPath, FollowsTheFirstChildOfEachName) {
    const modXml::Document document = modXml::Document::Parse(u"<r><a><b>1</b><b>2</b></a></r>");
    EXPECT_EQ(modKspXml::SelectXmlPath(document, u"a.b").Text(), u"1");
    EXPECT_FALSE(modKspXml::SelectXmlPath(document, u"a.c.d"));
    EXPECT_FALSE(modKspXml::SelectXmlPath(modXml::Document(), u"a"));
    EXPECT_EQ(modKspXml::GetXmlText(document, u"a.b", u"none"), u"1");
    EXPECT_EQ(modKspXml::GetXmlText(document, u"a.c", u"none"), u"none");
}

TEST(SelectXmlPath, OfADeepPathInADeepDocument_Walks) {
    std::string xml, path;
    for (int i = 0; i < 100000; ++i) xml += "<a>";
    for (int i = 0; i < 100000; ++i) xml += "</a>";
    for (int i = 1; i < 100000; ++i) path += i == 1 ? "a" : ".a";
    const modXml::Document document = modXml::Document::ParseBytes(xml);
    EXPECT_TRUE(modKspXml::SelectXmlPath(document, host::FromUtf8(path)));
    EXPECT_FALSE(modKspXml::SelectXmlPath(document, host::FromUtf8(path + ".a")));
}

TEST(MakeXmlPath, MakesWhatIsMissingOnly) {
    const modXml::Document document = modXml::Document::Parse(u"<r><a><b>1</b></a></r>");
    EXPECT_EQ(modKspXml::MakeXmlPath(document, u"a.b").Text(), u"1");
    modKspXml::MakeXmlPath(document, u"a.c.d").SetText(u"2");
    EXPECT_EQ(document.Xml(), u"<r><a><b>1</b><c><d>2</d></c></a></r>");
    EXPECT_THROW(modKspXml::MakeXmlPath(modXml::Document(), u"a"), host::Error);
}

TEST(BreakLines, OfACarriageReturn_KeepsItForTheNextReader) {
    EXPECT_EQ(modKspXml::BreakLines("<a>x\ry</a>"), "<a>x&#13;y</a>");
}

TEST(SaveXmlPretty, WritesOneTagALineWithoutTabs) {
    ProjectWorld w;
    modXml::Document document = modXml::Document::Parse(u"<r><a>x\ty</a><b/></r>");
    modKspXml::SaveXmlPretty(w.world.fs, document, ProjectWorld::InWork(u"out.xml"));
    const std::string bytes = w.world.fs.Bytes(ProjectWorld::InWork(u"out.xml"));
    EXPECT_EQ(bytes, "<r>\r\n<a>xy</a>\r\n<b/>\r\n</r>");
    EXPECT_EQ(document.Root().Child(u"a").Text(), u"xy");
}

TEST(JournalText, WritesOneEscapedLineAnEntry) {
    ProjectWorld w;
    CProjectFile& project = w.project.g_Project;
    EXPECT_EQ(modKspXml::JournalText(project), u"");
    project.AddIndex(u"a\tb\\c\rd\ne", u"0", u"2024/3/7 09:05:00", u"", u"", u"", false, 0);
    project.AddIndex(u"link", u"-1", u"", u"http://x", u"", u"", false, 0);
    EXPECT_EQ(modKspXml::JournalText(project), u"0\t2024/3/7 09:05:00\ta\\tb\\\\c\\rd\\ne\t\n-1\t\tlink\thttp://x\n");
}

}  // namespace
}  // namespace kestrum
