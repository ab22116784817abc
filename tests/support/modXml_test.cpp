#include "support/modXml.h"

#include <gtest/gtest.h>

namespace kestrum {
namespace {

using modXml::Document;
using modXml::Node;

const char kSample[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<project ver=\"8.0\">\r\n<abstract><title>A &amp; "
    "B</title></abstract>"
    "\r\n<!-- note --><index duration=\"00:05\" type=\"OL\"><item><pos>0</pos></item><item/></index></project>";

TEST(Xml, Parse_DropsWhiteSpaceBetweenElements_AndSerialisesWithout) {
    const Document document = Document::ParseBytes(kSample);
    EXPECT_EQ(document.Xml(),
              u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><project ver=\"8.0\"><abstract><title>A &amp; B</title>"
              u"</abstract><!-- note --><index duration=\"00:05\" type=\"OL\"><item><pos>0</pos></item><item/></index>"
              u"</project>");
}

TEST(Xml, TextWithLineBreaksBetweenTags_ParsesToTheSameDocument) {
    const Document first = Document::ParseBytes(kSample);
    String pretty = first.Xml();
    for (std::size_t i = pretty.find(u"><"); i != String::npos; i = pretty.find(u"><", i + 2))
        pretty.insert(i + 1, u"\r\n");
    EXPECT_EQ(Document::Parse(pretty).Xml(), first.Xml());
}

TEST(Xml, Select_FollowsTheFirstChildOfEachName) {
    const Document document = Document::ParseBytes(kSample);
    EXPECT_EQ(document.Root().Select(u"abstract/title").Text(), u"A & B");
    EXPECT_EQ(document.Root().Select(u"index.item.pos", u'.').Text(), u"0");
    EXPECT_FALSE(document.Root().Select(u"abstract/author"));
    EXPECT_FALSE(document.Root().Select(u"missing/title"));
    EXPECT_EQ(document.Root().Select(u"").Name(), u"project");
}

TEST(Xml, Children_AreElementsOnly) {
    const Document document = Document::ParseBytes(kSample);
    EXPECT_EQ(document.Root().Children().size(), 2u);
    EXPECT_EQ(document.Root().Child(1).Name(), u"index");
    EXPECT_FALSE(document.Root().Child(2));
    EXPECT_EQ(document.Root().Child(1).Parent().Name(), u"project");
    EXPECT_FALSE(document.Root().Parent());
}

TEST(Xml, Attributes_ByPositionAndByName) {
    Document document = Document::ParseBytes(kSample);
    Node index = document.Root().Child(u"index");
    EXPECT_EQ(index.AttributeCount(), 2u);
    EXPECT_EQ(index.AttributeAt(1), u"OL");
    EXPECT_EQ(index.Attribute(u"duration"), u"00:05");
    EXPECT_EQ(index.Attribute(u"Duration"), std::nullopt);
    index.SetAttributeAt(0, u"01:00");
    index.SetAttribute(u"kind", u"<x>");
    EXPECT_EQ(document.Root().Child(u"index").Attribute(u"duration"), u"01:00");
    EXPECT_EQ(index.AttributeAt(2), u"<x>");
    EXPECT_THROW(index.AttributeAt(3), host::Error);
}

TEST(Xml, Text_IsThatOfAllDescendants) {
    const Document document = Document::Parse(u"<a>x<b>y<c>z</c></b><![CDATA[<w>]]></a>");
    EXPECT_EQ(document.Root().Text(), u"xyz<w>");
}

TEST(Xml, SetText_ReplacesAllContent) {
    Document document = Document::Parse(u"<a>x<b>y</b></a>");
    document.Root().SetText(u"講 & <b>");
    EXPECT_EQ(document.Root().Xml(), u"<a>講 &amp; &lt;b&gt;</a>");
    document.Root().SetText(u"");
    EXPECT_EQ(document.Root().Xml(), u"<a/>");
}

TEST(Xml, ElementsAreAddedInsertedCopiedAndRemoved) {
    Document document;
    Node root = document.CreateRoot(u"a");
    Node second = root.Append(u"second");
    root.InsertBefore(u"first", second).SetText(u"1");
    root.InsertBefore(u"third", Node());
    second.AppendCopy(root.Child(u"first"));
    EXPECT_EQ(document.Xml(), u"<a><first>1</first><second><first>1</first></second><third/></a>");
    EXPECT_TRUE(root.Remove(root.Child(u"first")));
    EXPECT_FALSE(root.Remove(second.Child(u"first")));
    EXPECT_EQ(document.Xml(), u"<a><second><first>1</first></second><third/></a>");
}

TEST(Xml, WorkingOnAMissingElement_IsAnErrorOfItsOwn) {
    const Document document = Document::ParseBytes(kSample);
    Node none = document.Root().Child(u"missing");
    try {
        none.SetText(u"x");
        FAIL() << "a missing element took a text";
    } catch (const host::Error& error) {
        EXPECT_EQ(error.Number(), host::ErrorNumber::ObjectNotSet);
    }
    EXPECT_THROW(none.Text(), host::Error);
    EXPECT_THROW(none.Attribute(u"x"), host::Error);
    EXPECT_THROW(none.Append(u"x"), host::Error);
}

TEST(Xml, ABrokenDocument_IsRefusedWithTheReason) {
    for (const char* text : {"", "<a>", "<a></b>", "<a/><b/>", "just text", "<?xml version=\"1.0\"?>"}) {
        EXPECT_THROW(Document::ParseBytes(text), host::Error) << text;
    }
}

TEST(Xml, Bytes_OfOtherEncodings_AreRead_AndWrittenAsUtf8) {
    const std::string utf8 = "\xEF\xBB\xBF<a>\xC3\xA9</a>";
    EXPECT_EQ(Document::ParseBytes(utf8).Root().Text(), u"é");
    const std::u16string wide = u"\uFEFF<?xml version=\"1.0\" encoding=\"UTF-16\"?><a>講</a>";
    std::string bytes;
    for (const char16_t unit : wide) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    const Document document = Document::ParseBytes(bytes);
    EXPECT_EQ(document.Root().Text(), u"講");
    EXPECT_EQ(document.Bytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xE8\xAC\x9B</a>");
}

TEST(Xml, BytesOfNoKnownEncoding_AreRefusedRatherThanLost) {
    for (const char* bytes : {"<a>\xE9</a>", "<a x='\xFF'/>", "<?xml version='1.0' encoding='gb2312'?><a>\xC4\xE3</a>"})
        EXPECT_THROW(Document::ParseBytes(bytes), host::Error) << bytes;
    EXPECT_EQ(Document::ParseBytes("<?xml version='1.0' encoding='iso-8859-1'?><a>\xE9</a>").Root().Text(), u"é");
}

TEST(Xml, EntitiesOfADocument_AreNeverExpanded) {
    const Document document = Document::ParseBytes(
        "<!DOCTYPE a [<!ENTITY b 'boom'><!ENTITY f SYSTEM 'file:///etc/passwd'>]><a>&b;&f;&amp;</a>");
    EXPECT_EQ(document.Root().Text(), u"&b;&f;&");
}

TEST(Xml, SetText_LeavesOutWhatNoXmlCanHold) {
    Document document = Document::Parse(u"<a x=''/>");
    const String text = u"1" + String(1, u'\0') + u"2\x0B\x1F" + u"3\t\r\n4\xFFFE";
    document.Root().SetText(text);
    document.Root().SetAttribute(u"x", text);
    EXPECT_EQ(document.Root().Text(), u"123\t\r\n4");
    EXPECT_EQ(document.Root().Attribute(u"x"), u"123\t\r\n4");
    document.Root().SetText(u"\x01");
    EXPECT_EQ(document.Root().AttributeCount(), 1u);
    EXPECT_EQ(document.Root().Text(), u"");
}

TEST(Xml, ATreeOfAnyDepth_IsReadCopiedWrittenAndRemoved) {
    constexpr int kLevels = 1'000'000;
    std::string xml = "<r>";
    for (int i = 0; i < kLevels; ++i) xml += "<a>";
    for (int i = 0; i < kLevels; ++i) xml += "</a>";
    Document document = Document::ParseBytes(xml + "<b/></r>");
    Node root = document.Root();
    EXPECT_EQ(root.Text(), u"");
    root.AppendCopy(root.Child(u"a"));
    EXPECT_GT(document.Bytes().size(), 2 * 6u * kLevels);
    EXPECT_TRUE(root.Remove(root.Child(u"a")));
    root.Child(u"b").SetText(u"between");
    root.Child(u"a").SetText(u"flat");
    EXPECT_EQ(document.Xml(), u"<r><b>between</b><a>flat</a></r>");
}

TEST(Xml, HalfACharacterByReference_IsWrittenAsValidUtf8) {
    const Document document = Document::ParseBytes("<a>&#xD800;</a>");
    EXPECT_NO_THROW(Document::ParseBytes(document.Bytes()));
}

TEST(Xml, AnEmptyDocument_HasNoRoot) {
    EXPECT_FALSE(Document().Root());
}

}  // namespace
}  // namespace kestrum
