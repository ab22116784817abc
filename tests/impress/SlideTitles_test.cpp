// What slides are called when a real Impress reads them: the title placeholder, the large text at the top, or nothing.
// One office for all.
#include <cstdlib>

#include "Places.h"
#include "adapters/sim/World.h"
#include "impress/OfficeDesk.h"
#include "project/Context.h"
#include "project/modSlide.h"

namespace kestrum::impress {
namespace {

using Titles = std::vector<String>;

class SlideTitles : public testing::Test {
  protected:
    static void SetUpTestSuite() { desk = std::make_unique<OfficeDesk>(); }
    static void TearDownTestSuite() { desk.reset(); }

    /// The titles of a deck's slides as a recording would take them.
    Titles TitlesOf(const fs::path& deck) {
        desk->office->Open(Text(deck));
        const auto presentation = desk->App().ActivePresentation();
        Titles titles;
        for (std::int32_t number = 1; number <= presentation->SlideCount(); ++number) {
            const auto slide = presentation->Slide(number);
            titles.push_back(modSlide::GetSlideTitle(c, *slide, u"Slide " + host::FromUtf8(std::to_string(number))));
        }
        return titles;
    }
    fs::path MakeTitles() {
        const auto deck = folder.Path() / "titles.pptx";
        const std::string command =
            std::string("python3 '") + places::kSource + "/tests/impress/make_titles.py' '" + deck.string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return deck;
    }

    static std::unique_ptr<OfficeDesk> desk;
    TempFolder folder;
    sim::World world;
    host::Host ports = world.HostWith({.app = &desk->App()});
    support::State support;
    ui::Forms forms{world.presenter, world.loop};
    support::Context base{ports, forms, support};
    project::State project{base};
    project::Context c{base, project};
};
std::unique_ptr<OfficeDesk> SlideTitles::desk;

TEST_F(SlideTitles, OfTheSampleLecture_AreItsTitlesAndTheLargeTextWhereThereIsNone) {
    const auto titles = TitlesOf(folder.CopyOfLecture("lecture.pptx"));
    EXPECT_EQ(titles,
              (Titles{u"How a Key Frame Works", u"A video is mostly repetition",
                      u"Seeking starts at the key frame before", u"关键帧是什么？", u"Backup: why not key frames only?",
                      u"What a key frame costs", u"How a player finds your slide", u"Three things to take home"}));
}

TEST_F(SlideTitles, OfEachKindOfSlide_FollowTheTextItself) {
    String longTitle;
    for (int i = 0; i < 500; ++i) longTitle += u"Long title. ";
    const Titles expected = {u"The title itself",
                             u"A box of 24 points",
                             u"The first that is both",
                             u"Beside the group",
                             u"Large then small",
                             u"Set in 28 points, shrunk to fit",
                             u"First line after a break\rSecond paragraph",
                             longTitle,
                             u"كيف يعمل الإطار المفتاحي",
                             u"איך נמצאת שקופית",
                             u"🎓 Graduation 👩\u200d🏫 día",
                             u"🎬 Lights",
                             u"Slide 13",
                             u"Slide 14",
                             u"Half a point more",
                             u"Slide 16",
                             u"One point higher",
                             u"What it is about",
                             u"\rBehind an empty line",
                             u"关键帧 and more",
                             u"   "};
    const Titles titles = TitlesOf(MakeTitles());
    ASSERT_EQ(titles.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(host::ToUtf8(titles[i]), host::ToUtf8(expected[i])) << "slide " << i + 1;
}

/// Two boxes of text at the top whose Latin size is 10 points and whose size for the script of their text is 30.
constexpr char kOwnSizes[] =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:draw="urn:oasis:names:tc:opendocument:xmlns:drawing:1.0"
 xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0" office:version="1.2"
 office:mimetype="application/vnd.oasis.opendocument.presentation"><office:automatic-styles>
<style:style style:name="T1" style:family="text"><style:text-properties fo:font-size="10pt"
 style:font-size-asian="30pt" style:font-size-complex="30pt"/></style:style></office:automatic-styles>
<office:body><office:presentation>
<draw:page draw:name="one"><draw:frame svg:x="1cm" svg:y="1cm" svg:width="20cm" svg:height="2cm"><draw:text-box>
<text:p><text:span text:style-name="T1">«שקופית»</text:span></text:p></draw:text-box></draw:frame></draw:page>
<draw:page draw:name="two"><draw:frame svg:x="1cm" svg:y="1cm" svg:width="20cm" svg:height="2cm"><draw:text-box>
<text:p><text:span text:style-name="T1">1. 关键帧</text:span></text:p></draw:text-box></draw:frame></draw:page>
<draw:page draw:name="three"><draw:frame svg:x="1cm" svg:y="1cm" svg:width="20cm" svg:height="2cm"><draw:text-box>
<text:p><text:span text:style-name="T1">Latin</text:span></text:p></draw:text-box></draw:frame></draw:page>
<draw:page draw:name="four"/>
</office:presentation></office:body></office:document>)";

TEST_F(SlideTitles, TheSizeThatCounts_IsThatOfTheTextsOwnScript) {
    const auto deck = folder.Path() / "sizes.fodp";
    std::ofstream(deck, std::ios::binary) << kOwnSizes;
    EXPECT_EQ(TitlesOf(deck), (Titles{u"«שקופית»", u"1. 关键帧", u"Slide 3", u"Slide 4"}));
}

TEST_F(SlideTitles, Properties_ReachTheSevenFields) {
    desk->office->Open(Text(folder.CopyOfLecture("properties.pptx")));
    const std::vector<std::pair<String, String>> expected = {
        {u"title", u"How a Key Frame Works"},
        {u"author", u"Hanna Lindqvist"},
        {u"manager", u"Prof. Tomás Ferreira"},
        {u"company", u"Institute for Applied Teaching"},
        {u"category", u"Lecture"},
        {u"comments", u"Sample lecture: why seeking jumps, and what a key frame costs."},
        {u"keywords", u"video, seeking, compression"}};
    for (const auto& [name, value] : expected) EXPECT_EQ(modSlide::GetDocProperty(c, name), value);
    EXPECT_EQ(modSlide::GetDocProperty(c, u"no such property"), u"");
}

TEST_F(SlideTitles, CollectedForAnUpload_AreThoseOfThePlaceholders) {
    desk->office->Open(Text(MakeTitles()));
    modSlide::CollectSlideTitles(c, true);
    ASSERT_EQ(project.g_Project.index.Count(), 21);
    EXPECT_EQ(project.g_Project.index.Item(1).title, u"The title itself");
    EXPECT_EQ(project.g_Project.index.Item(3).title, u"Slide 3") << "the large text is not asked here";
    EXPECT_EQ(project.g_Project.index.Item(3).pos, u"-1");
}

}  // namespace
}  // namespace kestrum::impress
