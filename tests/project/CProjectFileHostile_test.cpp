// Project files that nobody meant: cut, damaged, in other encodings, nested without end, or made to do harm. Reading
// one asks the user or reads what is there; it never ends the program, and a file that could not be read is never
// replaced.
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

constexpr int kDeep = 1'000'000;

std::string Repeated(const std::string& text, int times) {
    std::string all;
    all.reserve(text.size() * static_cast<std::size_t>(times));
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

std::string Nested(int levels) {
    return Repeated("<n>", levels) + Repeated("</n>", levels);
}

std::string LittleEndian(const String& text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

std::string BigEndian(const String& text) {
    std::string bytes = LittleEndian(text);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

class HostileProject : public testing::Test {
  protected:
    std::string File() const { return w.world.fs.Bytes(ProjectWorld::kProjectFile); }

    void ExpectRefused(const std::string& bytes) {
        const std::size_t before = box.Shown().size();
        box.Answer(BoxAnswer::Cancel);
        EXPECT_FALSE(w.Load(bytes));
        EXPECT_EQ(box.Shown().size(), before + 1) << "the first value asks, Cancel ends";
        EXPECT_EQ(box.Shown().back().title, u"Load project.ksp");
        EXPECT_EQ(File(), bytes);
    }

    /// Saved and read again, nothing is asked and the entries are the same.
    void ExpectSavesAndLoadsAlike() {
        const Texts titles = w.Titles();
        const std::size_t before = box.Shown().size();
        ASSERT_TRUE(ksp.Save(u""));
        EXPECT_EQ(ksp.WrittenTo(), ProjectWorld::kProjectFile);
        ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
        EXPECT_EQ(w.Titles(), titles);
        EXPECT_EQ(box.Shown().size(), before);
    }

    ProjectWorld w;
    CProjectFile& ksp = w.project.g_Project;
    sim::MessageBox& box = w.world.box;
};

// --- Not a document ----------------------------------------------------------------------------------------------

TEST_F(HostileProject, WithoutARoot_Asks) {
    for (const char* bytes : {"", " ", "\r\n", "<?xml version=\"1.0\"?>", "<!-- only this -->", "text", "<", "<>",
                              "</a>", "<a/><b/>", "<!DOCTYPE a>"})
        ExpectRefused(bytes);
}

TEST_F(HostileProject, OfNothingButZeroBytes_Asks) {
    ExpectRefused(std::string(700, '\0'));
}

TEST_F(HostileProject, WithAZeroByteInside_Asks) {
    ExpectRefused(ReplacedOnce(ProjectText(Item("a", "0")), "Kestrum Title", std::string("Kes\0rum", 7)));
    ExpectRefused(ReplacedOnce(ProjectText(Item("a", "0")), "160x120", std::string("160\0", 4)));
}

TEST_F(HostileProject, WithZeroBytesBehindTheEnd_IsRead) {
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0")) + std::string(3000, '\0')));
    EXPECT_EQ(w.Titles(), Texts{u"a"});
    ExpectSavesAndLoadsAlike();
}

TEST_F(HostileProject, CutAnywhere_AsksAndStaysAsItIs) {
    const std::string whole = ProjectText(Item("a", "0") + Item("b", "5000"));
    const std::size_t end = whole.rfind('>');
    for (std::size_t length = 0; length <= end; ++length) {
        const std::string cut = whole.substr(0, length);
        box.Answer(BoxAnswer::Cancel);
        ASSERT_FALSE(w.Load(cut)) << length;
        ASSERT_EQ(box.AnswersLeft(), 0U) << length;
        ASSERT_EQ(File(), cut) << length;
    }
}

TEST_F(HostileProject, CutAnywhere_StaysAsItIsForOneWhoAlwaysGoesOn) {
    box.AnswerAll();
    const std::string whole = ProjectText(Item("a", "0"));
    for (std::size_t length = 0; length < whole.rfind('>'); length += 7) {
        w.Load(whole.substr(0, length));
        ASSERT_EQ(File(), whole.substr(0, length));
        ksp.AddIndex(u"new", u"0", u"", u"", u"", u"", false, 0);
        ksp.Save(u"");
        ksp.SaveMended();
        ASSERT_EQ(ksp.WrittenTo(), u"");
        ASSERT_EQ(File(), whole.substr(0, length)) << "what could not be read is not replaced";
    }
}

/// Whatever one wrong byte does, the file stays as it was or becomes one that holds what was read and asks no more than
/// before (a version that is lost stays lost).
TEST_F(HostileProject, WithOneWrongByteAnywhere_StaysOrBecomesWhole) {
    const std::string whole = ProjectText(Item("a", "0") + Item("b", "-1", "u") + Item("c", "5000"));
    for (const char wrong : {'\0', '<', '>', '&', '"', '9', '\xFF', '\r'}) {
        for (std::size_t at = 0; at < whole.size(); at += 5) {
            std::string bytes = whole;
            bytes[at] = wrong;
            ProjectWorld desk;
            desk.world.box.AnswerAll();
            const bool loaded = desk.Load(bytes);
            const std::string file = desk.world.fs.Bytes(ProjectWorld::kProjectFile);
            if (file == bytes) continue;
            ASSERT_TRUE(loaded) << at;
            const Texts titles = desk.Titles();
            const std::size_t boxes = desk.Boxes().size();
            ASSERT_TRUE(desk.project.g_Project.Load(ProjectWorld::kProjectFile)) << at;
            ASSERT_EQ(desk.Titles(), titles) << at;
            ASSERT_LE(desk.Boxes().size(), 2 * boxes) << at;
        }
    }
}

// --- Encodings ---------------------------------------------------------------------------------------------------

TEST_F(HostileProject, InUtf16_IsReadWithAndWithoutAMarkAndWrittenAsUtf8) {
    const String text =
        host::FromUtf8(ReplacedOnce(ProjectText(Item("W\xC3\xA4rme \xF0\x9F\x98\x80", "0")), "UTF-8", "UTF-16"));
    for (const std::string& bytes :
         {LittleEndian(u"\uFEFF" + text), LittleEndian(text), BigEndian(u"\uFEFF" + text), BigEndian(text)}) {
        ASSERT_TRUE(w.Load(bytes));
        EXPECT_EQ(w.Titles(), Texts{u"Wärme \U0001F600"});
        ExpectSavesAndLoadsAlike();
        EXPECT_EQ(File().rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n", 0), 0U);
    }
    EXPECT_EQ(w.Boxes(), Texts{});
}

TEST_F(HostileProject, InUtf16OfAnOddLength_NeverReadsBeyondItsEnd) {
    std::string bytes = LittleEndian(u"\uFEFF" + host::FromUtf8(ProjectText(Item("a", "0"))));
    bytes.pop_back();
    box.AnswerAll();
    w.Load(bytes);
    EXPECT_GT(bytes.size(), 500U);
}

TEST_F(HostileProject, WithAUtf8Mark_IsRead) {
    ASSERT_TRUE(w.Load("\xEF\xBB\xBF" + ProjectText(Item("a", "0"))));
    EXPECT_EQ(w.Titles(), Texts{u"a"});
    ExpectSavesAndLoadsAlike();
}

TEST_F(HostileProject, InDeclaredLatin1_IsReadAndWrittenAsUtf8) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("W\xE4rme", "0")), "UTF-8", "iso-8859-1")));
    EXPECT_EQ(w.Titles(), Texts{u"Wärme"});
    ExpectSavesAndLoadsAlike();
    EXPECT_NE(File().find("encoding=\"UTF-8\""), std::string::npos);
}

TEST_F(HostileProject, InBytesOfAnUnknownEncoding_AsksRatherThanLosingThem) {
    ExpectRefused(ProjectText(Item("W\xE4rme", "0")));
    ExpectRefused(ReplacedOnce(ProjectText(Item("\xC4\xE3", "0")), "UTF-8", "gb2312"));
    ExpectRefused(ProjectText(Item("\xC0\xAF overlong", "0")));
    ExpectRefused(ProjectText(Item("\xED\xA0\x80 half a character", "0")));
    ExpectRefused(ProjectText(Item("cut \xE6\xB3", "0")));
}

TEST_F(HostileProject, InPlainLettersUnderAnUnknownEncoding_IsRead) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a", "0")), "UTF-8", "gb2312")));
    ExpectSavesAndLoadsAlike();
}

// --- Entities ----------------------------------------------------------------------------------------------------

TEST_F(HostileProject, WithAnEntityBomb_ExpandsNothing) {
    std::string bomb = "<!DOCTYPE kestrum [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 100; ++i) {
        const std::string before = "&a" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY a" + std::to_string(i) + " \"" + Repeated(before, 10) + "\">";
    }
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("&a99;", "0")), "<kestrum", bomb + "]><kestrum")));
    EXPECT_EQ(w.Titles(), Texts{u"&a99;"});
    ExpectSavesAndLoadsAlike();
    EXPECT_LT(File().size(), 20000U);
}

TEST_F(HostileProject, WithAnExternalEntity_OpensNoOtherFile) {
    w.world.fs.Put(u"/etc/secret", "secret");
    const std::string doctype =
        "<!DOCTYPE kestrum SYSTEM \"file:///etc/secret\" [<!ENTITY e SYSTEM \"file:///etc/secret\">"
        "<!ENTITY % p SYSTEM \"http://x/p\">%p;]>";
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("&e;", "0")), "<kestrum", doctype + "<kestrum")));
    EXPECT_EQ(w.Titles(), Texts{u"&e;"});
    EXPECT_EQ(w.world.faults.CountOf(u"fs.ReadFile"), 1);
    ExpectSavesAndLoadsAlike();
}

TEST_F(HostileProject, WithReferencesToNoCharacter_IsReadAndWrittenReadably) {
    const std::string codec = "<codec>&#xD800;&#x110000;&#99999999999;&#1;</codec>";
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a&#xDFFF;&#2;b", "0")), "<codec></codec>", codec)));
    EXPECT_EQ(w.Titles().size(), 1U);
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_TRUE(host::IsUtf8(File()));
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(w.Boxes(), Texts{});
}

// --- Shape and size ----------------------------------------------------------------------------------------------

TEST_F(HostileProject, NestedAMillionLevelsInAnEntry_IsLoadedSavedAndForgotten) {
    box.AnswerAll();
    ASSERT_TRUE(w.Load(ProjectText(Item("a", "0") + Nested(kDeep))));
    EXPECT_EQ(w.Titles(), Texts{u"a"});
    EXPECT_LT(File().size(), 5000U) << "the entry without a title was left out";
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
}

TEST_F(HostileProject, NestedAMillionLevelsInAValue_IsReplacedByItsText) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a" + Nested(kDeep) + "b", "0")), "<author></author>",
                                    "<author>" + Nested(kDeep) + "</author>")));
    EXPECT_EQ(w.Titles(), Texts{u"ab"});
    EXPECT_EQ(ksp.author, u"");
    ExpectSavesAndLoadsAlike();
    EXPECT_LT(File().size(), 5000U);
}

TEST_F(HostileProject, NestedAMillionLevelsBesideItsParts_KeepsThem) {
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a", "0")), "<abstract>", Nested(kDeep) + "<abstract>")));
    ExpectSavesAndLoadsAlike();
    EXPECT_GT(File().size(), 5U * kDeep) << "what is not known is kept";
}

TEST_F(HostileProject, NestedAMillionLevelsAndNeverClosed_Asks) {
    ExpectRefused(ReplacedOnce(ProjectText(""), "<abstract>", Repeated("<n>", kDeep) + "<abstract>"));
}

TEST_F(HostileProject, WithValuesOfManyMegabytes_KeepsThem) {
    const std::string big(2'000'000, 'x');
    std::string text = ReplacedOnce(ProjectText(Item(big, "0")), "160x120", big);
    ASSERT_TRUE(w.Load(ReplacedOnce(text, "<kestrum ", "<kestrum ver=\"8\" other=\"" + big + "\" ")));
    EXPECT_EQ(ksp.photoSize.size(), big.size());
    EXPECT_EQ(ksp.index.Item(1).title.size(), big.size());
    ExpectSavesAndLoadsAlike();
    EXPECT_GT(File().size(), 3 * big.size());
}

TEST_F(HostileProject, WithAnAttributeTwice_TakesTheFirst) {
    std::string text = ReplacedOnce(ProjectText(Item("a", "0")), "<kestrum ", "<kestrum ver=\"8.5\" ");
    ASSERT_TRUE(w.Load(ReplacedOnce(text, "<index ", "<index duration=\"00:30\" ")));
    EXPECT_EQ(ksp.ver, u"8.5");
    EXPECT_EQ(ksp.durationText, u"00:30");
    ExpectSavesAndLoadsAlike();
}

TEST_F(HostileProject, WithASecondIndex_ReadsBackWhatWasWritten) {
    const std::string second = R"(<index duration="00:20" type="OL">)" + Item("stray", "0") + "</index></project>";
    ASSERT_TRUE(w.Load(ReplacedOnce(ProjectText(Item("a", "0")), "</project>", second)));
    EXPECT_EQ(w.Titles(), Texts{u"a"});
    ksp.AddIndex(u"b", u"9000", u"", u"", u"", u"", false, 0);
    ExpectSavesAndLoadsAlike();
    EXPECT_EQ(w.Titles(), (Texts{u"a", u"b"}));
}

TEST_F(HostileProject, WithPositionsThatAreNoPositions_LeavesThoseEntriesOut) {
    box.AnswerAll();
    ASSERT_TRUE(
        w.Load(ProjectText(Item("1", "") + Item("2", "99999999999") + Item("3", "1e99") + Item("4", "0x10") +
                           Item("5", "nan") + Item("6", "\xEF\xBC\x91") + Item("7", "-99999999999") + Item("8", "7"))));
    EXPECT_EQ(w.Titles(), Texts{u"8"});
}

// --- Fields that no file can hold --------------------------------------------------------------------------------

TEST_F(HostileProject, Save_OfCharactersThatNoXmlHolds_LeavesThemOutAndStaysReadable) {
    ASSERT_TRUE(w.Load(ProjectText("")));
    const String title = u"a" + String(1, u'\0') + u"b\x01\x1F\xFFFE\xFFFF" + u"c\xD800" + u"d]]>\r\ne";
    ksp.AddIndex(title, u"0", title, u"", u"", u"", false, 0);
    ksp.photoSize = ksp.author = ksp.template_ = title;
    ASSERT_TRUE(ksp.Save(u""));
    EXPECT_EQ(File().find('\0'), std::string::npos);
    EXPECT_EQ(File().find("&#01;"), std::string::npos) << "another reader refuses the whole file for one of these";
    ASSERT_TRUE(ksp.Load(ProjectWorld::kProjectFile));
    EXPECT_EQ(ksp.index.Item(1).title,
              u"abc\xFFFD"
              u"d]]>\r\ne");
    EXPECT_EQ(ksp.author, ksp.index.Item(1).title);
    EXPECT_EQ(w.Boxes(), Texts{});
}

}  // namespace
}  // namespace kestrum
