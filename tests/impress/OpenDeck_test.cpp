// What can be opened, and what is said about the rest. One office for all.
#include "Places.h"
#include "impress/OfficeDesk.h"

namespace kestrum::impress {
namespace {

class OpenDeck : public testing::Test {
  protected:
    static void SetUpTestSuite() { desk = std::make_unique<OfficeDesk>(); }
    static void TearDownTestSuite() { desk.reset(); }

    String Opening(const fs::path& file) {
        try {
            desk->office->Open(Text(file));
        } catch (const host::Error& error) {
            return error.Description();
        }
        return u"(opened)";
    }
    fs::path Write(const std::string& name, const std::string& content) {
        const auto file = folder.Path() / fs::u8path(name);
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

    static std::unique_ptr<OfficeDesk> desk;
    TempFolder folder;
};
std::unique_ptr<OfficeDesk> OpenDeck::desk;

constexpr char kFlatDeck[] =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:draw="urn:oasis:names:tc:opendocument:xmlns:drawing:1.0"
 xmlns:presentation="urn:oasis:names:tc:opendocument:xmlns:presentation:1.0"
 xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0" office:version="1.2"
 office:mimetype="application/vnd.oasis.opendocument.presentation"><office:body><office:presentation>
<draw:page draw:name="one"><draw:frame presentation:style-name="pr1" presentation:class="title" svg:x="1cm" svg:y="1cm" svg:width="20cm"
 svg:height="3cm"><draw:text-box><text:p>First line<text:line-break/>after a break</text:p><text:p>Second
 paragraph</text:p></draw:text-box></draw:frame></draw:page>
<draw:page draw:name="two"><draw:frame presentation:style-name="pr1" presentation:class="title" presentation:placeholder="true" svg:x="1cm"
 svg:y="1cm" svg:width="20cm" svg:height="3cm"><draw:text-box/></draw:frame></draw:page>
</office:presentation></office:body></office:document>)";

TEST_F(OpenDeck, APathWithBlanksAndChineseCharacters_OpensAndComesBackWhole) {
    const auto deck = folder.CopyOfLecture("关键帧 第 1 课.pptx");
    EXPECT_EQ(Opening(deck), u"(opened)");
    EXPECT_EQ(desk->App().ActivePresentation()->FullName(), Text(deck));
}

TEST_F(OpenDeck, OpeningTwice_KeepsOnePresentation) {
    const auto deck = folder.CopyOfLecture("twice.pptx");
    Opening(deck);
    const auto count = desk->App().PresentationCount();
    EXPECT_EQ(Opening(deck), u"(opened)");
    EXPECT_EQ(desk->App().PresentationCount(), count);
}

TEST_F(OpenDeck, AFlatFile_GivesParagraphsAsCrAndBreaksAsBlanks) {
    ASSERT_EQ(Opening(Write("flat.fodp", kFlatDeck)), u"(opened)");
    const auto presentation = desk->App().ActivePresentation();
    const auto title = presentation->Slide(1)->Shapes()->Title();
    EXPECT_TRUE(title->HasTextFrame());
    EXPECT_TRUE(title->HasText());
    EXPECT_EQ(title->Text(), u"First line after a break\rSecond paragraph");
}

TEST_F(OpenDeck, AnEmptyTitlePlaceholder_IsATitleWithoutText) {
    ASSERT_EQ(Opening(Write("empty title.fodp", kFlatDeck)), u"(opened)");
    const auto shapes = desk->App().ActivePresentation()->Slide(2)->Shapes();
    ASSERT_TRUE(shapes->HasTitle());
    EXPECT_FALSE(shapes->Title()->HasText());
}

TEST_F(OpenDeck, AMissingFile_IsToldByItsPath) {
    const auto file = folder.Path() / "none.pptx";
    EXPECT_EQ(Opening(file), u"There is no presentation \"" + Text(file) + u"\".");
}

TEST_F(OpenDeck, ATextUnderADecksName_OpensNothing) {
    const auto count = desk->App().PresentationCount();
    const auto sentence = Opening(Write("notes.pptx", "These are my notes.\n"));
    EXPECT_EQ(sentence,
              u"\"notes.pptx\" is damaged, or not a presentation that Impress can open with the parts of LibreOffice "
              u"installed here.");
    EXPECT_EQ(desk->App().PresentationCount(), count);
}

TEST_F(OpenDeck, ADamagedDeck_OpensNothing) {
    std::ifstream sample(std::string(places::kSource) + "/samples/lecture.pptx", std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(sample)), {});
    const auto sentence = Opening(Write("half.pptx", bytes.substr(0, bytes.size() / 2)));
    EXPECT_EQ(sentence,
              u"\"half.pptx\" is damaged, or not a presentation that Impress can open with the parts of LibreOffice "
              u"installed here.");
}

TEST_F(OpenDeck, ATextDocument_OpensNothing) {
    const auto sentence = Opening(Write("letter.odp", "{\\rtf1 Dear reader}"));
    EXPECT_NE(sentence.find(u"not a presentation"), String::npos);
}

TEST_F(OpenDeck, ADeckOpenElsewhere_IsRefusedByItsUsersName) {
    const auto deck = folder.CopyOfLecture("shared.pptx");
    Write(".~lock.shared.pptx#", "Ada Lovelace,ada,otherhost,21.11.2026 09:30,file:///home/ada/.config/libreoffice/4;");
    const auto sentence = Opening(deck);
    EXPECT_NE(sentence.find(u"user Ada Lovelace on otherhost, since 21.11.2026 09:30"), String::npos);
    EXPECT_TRUE(fs::exists(folder.Path() / ".~lock.shared.pptx#")) << "not ours to delete";
}

TEST_F(OpenDeck, ALockThatAKilledOfficeOfOursLeft_IsTakenAway) {
    char machine[256] = {};
    gethostname(machine, sizeof machine - 1);
    const auto deck = folder.CopyOfLecture("again.pptx");
    Write(".~lock.again.pptx#",
          std::string(",ada,") + machine + ",21.11.2026 09:30,file:///tmp/kestrum-office-1-gone;");
    EXPECT_EQ(Opening(deck), u"(opened)");
}

}  // namespace
}  // namespace kestrum::impress
