// The forgiving reader with its exact errors, and the writer.
#include "support/JSON.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>

#include "host/Error.h"
#include "support/JsonReader.h"
#include "support/Numbers.h"

namespace kestrum {
namespace {

using namespace JSON;
using namespace std::string_literals;

class JsonTest : public ::testing::Test {
  protected:
    /// Parses and writes again: what was kept, in order.
    String RoundTrip(StringView text) { return ToJsonText(ParseJson(state, text)); }
    const String& Errors() { return GetJsonErrors(state); }
    void ExpectClean(StringView text, StringView written) {
        EXPECT_EQ(RoundTrip(text), written) << host::ToUtf8(text);
        EXPECT_EQ(Errors(), u"") << host::ToUtf8(text);
    }
    void ExpectFaulty(StringView text, StringView written, StringView errors) {
        EXPECT_EQ(RoundTrip(text), written) << host::ToUtf8(text);
        EXPECT_EQ(Errors(), errors) << host::ToUtf8(text);
    }
    support::State state;
};

TEST_F(JsonTest, AnEmptyText_IsInvalid) {
    for (const StringView text : {u"", u"  \t\r\n", u"1", u"\"a\"", u"true", u"// only"}) {
        EXPECT_TRUE(std::holds_alternative<Empty>(ParseJson(state, text)));
        EXPECT_EQ(Errors(), u"Invalid JSON");
    }
}

TEST_F(JsonTest, EmptyContainers) {
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<Dictionary>>(ParseJson(state, u"{}")));
    ExpectClean(u"{}", u"{}");
    EXPECT_TRUE(std::holds_alternative<std::shared_ptr<Collection>>(ParseJson(state, u"[]")));
    ExpectClean(u" [ ] ", u"[]");
}

TEST_F(JsonTest, Keys_MayBeQuotedEitherWayOrNotAtAll) {
    ExpectClean(u"{a:1,'b':2,\"c\":3}", u"{\"a\":1,\"b\":2,\"c\":3}");
}

TEST_F(JsonTest, Keys_LoseBlanksAndQuoteMarks_AndHaveNoEscapes) {
    ExpectClean(u"{\"a b\":1}", u"{\"ab\":1}");
    ExpectClean(u"{ k e y : 1}", u"{\"key\":1}");
    ExpectClean(u"{\"a:b\":1}", u"{\"a:b\":1}");
    ExpectFaulty(u"{\"a'b'c\":1}", u"{}", u"Invalid Key at position 7 : ab\r\nType mismatch: ab\r\n");
    ExpectFaulty(u"{\"a'b\":1}", u"{\"ab:1}\":}", u"Missing '}': {\"a'b\":1}\r\n");
}

TEST_F(JsonTest, AnyValueKind_IsRead) {
    ExpectClean(u"{\"s\":\"x\",'t':'y',n:null,t1:true,f1:false,d:-1.5,o:{a:[1]},}x:1}",
                u"{\"s\":\"x\",\"t\":\"y\",\"n\":null,\"t1\":true,\"f1\":false,\"d\":-1.5,\"o\":{\"a\":[1]},\"}x\":1}");
}

TEST_F(JsonTest, CommasBetweenMembers_AreNotAskedFor) {
    ExpectClean(u"{\"a\":1 \"b\":2}", u"{\"a\":1,\"b\":2}");
    ExpectClean(u"[1 2]", u"[1,2]");
}

TEST_F(JsonTest, ADuplicateKey_StopsTheObject_AndKeepsTheFirstValue) {
    RoundTrip(u"{a:1,a:2,b:3}");
    EXPECT_EQ(RoundTrip(u"{a:1,a:2,b:3}"), u"{\"a\":1}");
    EXPECT_TRUE(Errors().ends_with(u": a\r\n"));
}

TEST_F(JsonTest, ATrailingOrDoubledComma_InAnArray_IsAnError) {
    ExpectFaulty(u"[1,]", u"[1]", u"Type mismatch: ]\r\n");
    ExpectFaulty(u"[1,,2]", u"[1]", u"Type mismatch: ,2]\r\n");
}

TEST_F(JsonTest, ACommaBeforeTheClosingBrace_MakesTheBracePartOfAKey) {
    ExpectFaulty(u"{a:1,}", u"{\"a\":1,\"}\":}", u"Missing '}': {a:1,}\r\n");
}

TEST_F(JsonTest, ANumberThatRunsToTheEnd_IsEmpty) {
    const Value value = ParseJson(state, u"[1");
    EXPECT_EQ(Errors(), u"Missing ']': [1\r\n");
    const auto& list = std::get<std::shared_ptr<Collection>>(value);
    ASSERT_EQ(list->Count(), 1);
    EXPECT_TRUE(std::holds_alternative<Empty>(list->Item(1)));
}

TEST_F(JsonTest, MissingBraces_QuoteTheLast20Characters) {
    ExpectFaulty(u"{\"name\":\"a rather long text\"", u"{\"name\":\"a rather long text\"}",
                 u"Missing '}': \"a rather long text\"\r\n");
    ExpectFaulty(u"{a:[true", u"{\"a\":[true]}", u"Missing ']': {a:[true\r\nMissing '}': {a:[true\r\n");
}

TEST_F(JsonTest, ANumberOfTheWrongShape_StopsItsContainer_AndTheOuterOneGoesOnFromThere) {
    ExpectFaulty(u"{a:1-2,b:3}", u"{}", u"Type mismatch: a\r\n");
    ExpectFaulty(u"[[1-2 ],7]", u"[[]]", u"Type mismatch:  ],7]\r\n");
}

TEST_F(JsonTest, Comments_AreBlanks) {
    ExpectClean(u"{// one\r\na:1,/* two */b:2}", u"{\"a\":1,\"b\":2}");
    ExpectClean(u"{/* a * b c / d:1}", u"{\"d\":1}");
    ExpectClean(u"[ / 1, * 2]", u"[1,2]");
    ExpectClean(u"[/* one\r\n two */ 3]", u"[3]");
}

TEST_F(JsonTest, ALongComment_NeedsAFreshStarBeforeItsSlash) {
    ExpectClean(u"[/***/ 1] */ 2]", u"[2]");         // the second star takes the first one back
    ExpectClean(u"[/* a / b */ 1]", u"[1]");         // a slash inside, without a star before it
    ExpectClean(u"[/* a /* b / 1]", u"[1]");         // the star of an inner opening is enough
    ExpectClean(u"[/* * one\r\n two / 3]", u"[3]");  // any distance apart, across lines
}

TEST_F(JsonTest, ALineComment_BecomesALongOneAtTwoStars) {
    ExpectClean(u"[// one * two\r\n1]", u"[1]");
    ExpectClean(u"[// ** one\r\n1 */ 2]", u"[2]");
}

TEST_F(JsonTest, AStrayMark_IsForgottenAtTheLineEnd) {
    ExpectClean(u"[/\r\n/ 1]", u"[1]");
    ExpectClean(u"[/ / 1\r\n2]", u"[2]");  // with a blank between they still make a comment
    ExpectClean(u"[/\n* 1]", u"[1]");
}

TEST_F(JsonTest, Parentheses_AreBlanks) {
    ExpectClean(u"[(1)]", u"[1]");
    ExpectClean(u"({a:1})", u"{\"a\":1}");
    ExpectClean(u"{(a):1}", u"{\"a)\":1}");  // in front of a key, not inside it
}

TEST_F(JsonTest, TextBehindTheTopLevelValue_IsIgnored) {
    ExpectClean(u"{a:1} and more }", u"{\"a\":1}");
}

TEST_F(JsonTest, Strings_KnowTheEscapes_AndLoseTheBackslashOfOthers) {
    const auto text = [&](StringView json) {
        return std::get<String>(std::get<std::shared_ptr<Collection>>(ParseJson(state, json))->Item(1));
    };
    EXPECT_EQ(text(u"[\"\\\"\\\\\\/\\'\\b\\f\\n\\r\\t\"]"), u"\"\\/'\b\f\n\r\t");
    EXPECT_EQ(text(u"['\\x']"), u"x");
    EXPECT_EQ(text(u"['\\u0041b']"), u"Ab");
    EXPECT_EQ(text(u"['\\u00e9\\uD83C\\uDF93']"), u"é\U0001F393");
    EXPECT_EQ(text(u"['it is \"so\"\r\n']"), u"it is \"so\"\r\n");
}

TEST_F(JsonTest, ABrokenUnicodeEscape_GivesItsLeadingDigits_AndMovesOnByFour) {
    const Value value = ParseJson(state, u"['\\u00G1x']");
    EXPECT_EQ(std::get<String>(std::get<std::shared_ptr<Collection>>(value)->Item(1)), String(1, u'\0') + u"x");
    const Value hex = ParseJson(state, u"['\\u4G00x']");
    EXPECT_EQ(std::get<String>(std::get<std::shared_ptr<Collection>>(hex)->Item(1)), u"\x04x");
}

TEST_F(JsonTest, AStringThatRunsToTheEnd_IsKept) {
    ExpectFaulty(u"['ab", u"[\"ab\"]", u"Missing ']': ['ab\r\n");
    ExpectFaulty(u"['ab\\u00", u"[\"ab\\u0000\"]", u"Missing ']': ['ab\\u00\r\n");
    ExpectFaulty(u"['ab\\", u"[\"ab\"]", u"Missing ']': ['ab\\\r\n");
}

TEST_F(JsonTest, AKeyWithoutAColon_IsTold) {
    ExpectFaulty(u"{\"a\" 1}", u"{\"a\":1}", u"Invalid Key at position 6 : a\r\n");
    ExpectFaulty(u"{'a'", u"{\"a\":}", u"Invalid Key at position 5 : a\r\nMissing '}': {'a'\r\n");
}

TEST_F(JsonTest, AKeyThatRunsToTheEnd_IsKeptWithoutAMessageOfItsOwn) {
    ExpectFaulty(u"{ab", u"{\"ab\":}", u"Missing '}': {ab\r\n");
    ExpectFaulty(u"{\"ab", u"{\"ab\":}", u"Missing '}': {\"ab\r\n");
    ExpectFaulty(u"{a:1,", u"{\"a\":1,\"\":}", u"Missing '}': {a:1,\r\n");
}

TEST_F(JsonTest, ACommaBeforeTheFirstMember_IsSteppedOver) {
    ExpectClean(u"[,1]", u"[1]");
    ExpectClean(u"{,a:1}", u"{\"a\":1}");
}

TEST_F(JsonTest, WordsOfOtherCase_AreNumbersThatDoNotConvert) {
    ExpectFaulty(u"[True]", u"[]", u"Type mismatch: True]\r\n");
    ExpectFaulty(u"{a:NULL}", u"{}", u"Type mismatch: a\r\n");
}

TEST_F(JsonTest, ABrokenBooleanOrNull_IsTold_AndTheLoopGoesOnFromThere) {
    ExpectFaulty(u"{a:tru,b:1}", u"{\"a\":false,\"tru,b\":1}", u"Invalid Boolean at position 4 : tru,b:1}\r\n");
    ExpectFaulty(u"{a:nil,b:1}", u"{\"a\":,\"nil,b\":1}", u"Invalid null value at position 4 : nil,b:1}\r\n");
}

TEST_F(JsonTest, ABrokenBoolean_InAnArray_EndsTheArrayInsteadOfReadingItForEver) {
    ExpectFaulty(u"[1,tru]", u"[1,false]", u"Invalid Boolean at position 4 : tru]\r\n");
    ExpectFaulty(u"[nil]", u"[]", u"Invalid null value at position 2 : nil]\r\n");
    ExpectFaulty(u"[tru]", u"[false]", u"Invalid Boolean at position 2 : tru]\r\n");
    ExpectFaulty(u"[nul]", u"[]", u"Invalid null value at position 2 : nul]\r\n");
    const Value value = ParseJson(state, u"[nul]");
    const auto& list = std::get<std::shared_ptr<Collection>>(value);
    ASSERT_EQ(list->Count(), 1);
    EXPECT_TRUE(std::holds_alternative<Empty>(list->Item(1)));
}

TEST_F(JsonTest, ABrokenBoolean_InANestedArray_IsToldOncePerArray_AndTheObjectGoesOn) {
    ExpectFaulty(u"{a:[[fals],1],b:2}", u"{\"a\":[[false],false],\"fals],1],b\":2}",
                 u"Invalid Boolean at position 6 : fals],1],b:2}\r\n"
                 u"Invalid Boolean at position 6 : fals],1],b:2}\r\n");
}

TEST_F(JsonTest, Containers_Nest256Deep_AndADeeperOneIsAnErrorAndNoCrash) {
    const auto nested = [](std::size_t depth) { return String(depth, u'[') + String(depth, u']'); };
    ExpectClean(nested(256), nested(256));
    ParseJson(state, nested(257));
    EXPECT_TRUE(Errors().starts_with(u"Nested too deep at position 257: \r\nMissing ']': ]]]]"))
        << host::ToUtf8(Errors());
    ParseJson(state, String(1'000'000, u'['));
    EXPECT_TRUE(Errors().starts_with(u"Nested too deep at position 257: \r\n"));
    String objects;
    for (int i = 0; i < 100'000; ++i) objects += u"{a:";
    ParseJson(state, objects);
    EXPECT_TRUE(Errors().starts_with(u"Nested too deep at position 769: a\r\nMissing '}': "));
    EXPECT_LT(Errors().size(), 20'000u);
}

TEST_F(JsonTest, ATextFullOfFaults_GetsNoMoreMessagesThanItsReaderCouldEverRead) {
    String text = u"{";
    for (int i = 0; i < 20000; ++i) text += u"a" + ToText(i) + u":t,";  // each quotes the rest of the text
    const Value value = ParseJson(state, text);
    EXPECT_TRUE(Errors().starts_with(u"Invalid Boolean at position 5 : t,a1:t,"));
    EXPECT_LE(Errors().size(), 1'000'000 + text.size() + 100);
    EXPECT_EQ(std::get<std::shared_ptr<Dictionary>>(value)->count(), 20001) << "reading goes on to the end";
}

TEST_F(JsonTest, NulsAndUnpairedSurrogates_AreCharactersLikeOthers) {
    const String text = u"[\"\0\xD800\\uDC00\xDFFF\"]"s;
    const Value value = ParseJson(state, text);
    EXPECT_EQ(Errors(), u"");
    EXPECT_EQ(std::get<String>(std::get<std::shared_ptr<Collection>>(value)->Item(1)), u"\0\xD800\xDC00\xDFFF"s);
    EXPECT_EQ(ToJsonText(value), u"[\"\\u0000\\uD800\\uDC00\\uDFFF\"]");
    EXPECT_TRUE(std::holds_alternative<Empty>(ParseJson(state, u"\0{}"s)));
    EXPECT_EQ(Errors(), u"Invalid JSON");
    ExpectFaulty(u"[\0]"s, u"[]", u"Type mismatch: \0]\r\n"s);
}

TEST_F(JsonTest, Errors_AreThoseOfTheLastParse) {
    ParseJson(state, u"[1,]");
    EXPECT_NE(Errors(), u"");
    ParseJson(state, u"[]");
    EXPECT_EQ(Errors(), u"");
}

TEST_F(JsonTest, Readers_ThatStandAtTheWrongCharacter_TellSo) {
    Source object{u"  [1]", 1, state.jsonErrors, 0};
    EXPECT_EQ(ReadObject(object)->count(), 0);
    EXPECT_EQ(state.jsonErrors, u"Invalid Object at position 3 : [1]\r\n");
    state.jsonErrors.clear();
    Source array{u"{a:1, and this is far more than twenty}", 1, state.jsonErrors, 0};
    EXPECT_EQ(ReadArray(array)->Count(), 0);
    EXPECT_EQ(state.jsonErrors, u"Invalid Array at position 1 : {a:1, and this is fa\r\n");
}

TEST_F(JsonTest, Numbers_AreExactDecimals) {
    ExpectClean(u"[0.1, 1234567890.123456789, 1e5, -2.50E-2, +7, .5, 5.]",
                u"[0.1,1234567890.123456789,100000,-0.025,7,0.5,5]");
}

TEST_F(JsonTest, ANumberOfAnySize_IsRead_UnlessNoDecimalHoldsIt) {
    ExpectClean(u"[1e300, 5e-300]", u"[1E+300,5E-300]");
    ExpectFaulty(u"[1, 1e9999999999]", u"[1]", u"Overflow: ]\r\n");
    ExpectFaulty(u"{a:-1e9999999999,b:1}", u"{}", u"Overflow: a\r\n");
}

TEST_F(JsonTest, Writer_EmitsAsciiOnly) {
    EXPECT_EQ(ToJsonText(String(u"é")), u"\"\\u00E9\"");
    EXPECT_EQ(ToJsonText(String(u"講\U0001F393")), u"\"\\u8B1B\\uD83C\\uDF93\"");
    EXPECT_EQ(ToJsonText(String(u"/")), u"\"\\/\"");
    EXPECT_EQ(ToJsonText(String(u"\x7F")), u"\"\\u007F\"");
    EXPECT_EQ(ToJsonText(String(u"\x01\b\f\n\r\t\"\\ ~")), u"\"\\u0001\\b\\f\\n\\r\\t\\\"\\\\ ~\"");
}

TEST_F(JsonTest, Writer_WritesAKeyAsItStands) {
    auto dictionary = std::make_shared<Dictionary>();
    dictionary->Add(u"a\"b", true);
    EXPECT_EQ(ToJsonText(dictionary), u"{\"a\"b\":true}");
}

TEST_F(JsonTest, Writer_KnowsEachKind) {
    EXPECT_EQ(ToJsonText(Empty{}), u"");
    EXPECT_EQ(ToJsonText(Null{}), u"null");
    EXPECT_EQ(ToJsonText(false), u"false");
    EXPECT_EQ(ToJsonText(std::uint8_t{200}), u"200");
    EXPECT_EQ(ToJsonText(std::int16_t{-5}), u"-5");
    EXPECT_EQ(ToJsonText(std::int32_t{70000}), u"70000");
    EXPECT_EQ(ToJsonText(0.1), u"0.1");
    EXPECT_EQ(ToJsonText(2.5f), u"2.5");
    EXPECT_EQ(ToJsonText(Currency{123400}), u"12.34");
    EXPECT_EQ(ToJsonText(Decimal(-12)), u"-12");
    EXPECT_EQ(ToJsonText(host::DateTime{2024, 3, 7, 9, 5, 0, 0}), u"\"2024/3/7 09:05:00\"");
    EXPECT_EQ(ToJsonText(OtherObject{}), u"");
}

/// A decimal comma, and a point between thousands.
struct CommaFacet : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(JsonTest, Writer_UnderALocaleWithADecimalComma_WritesAPoint) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaFacet));
    ExpectClean(u"[12345.5]", u"[12345.5]");
    EXPECT_EQ(ToJsonText(Value(12345.5)), u"12345.5");
    EXPECT_EQ(ToJsonText(Value(0.25f)), u"0.25");
    EXPECT_EQ(ToJsonText(Currency{123455000}), u"12345.5");
    std::locale::global(before);
}

TEST_F(JsonTest, Writer_WritesNumbersToTheDigitsOfTheirKind) {
    EXPECT_EQ(ToJsonText(1.0 / 3), u"0.333333333333333");
    EXPECT_EQ(ToJsonText(1.0f / 3), u"0.3333333");
    EXPECT_EQ(ToJsonText(1e20), u"1E+20");
    EXPECT_EQ(ToJsonText(-2.5e-7), u"-2.5E-07");
    EXPECT_EQ(ToJsonText(Currency{std::numeric_limits<std::int64_t>::min()}), u"-922337203685477.5808");
}

TEST_F(JsonTest, Writer_OfAContainerInsideItself_WritesNothingThere) {
    auto list = std::make_shared<Collection>();
    auto inner = std::make_shared<Collection>();
    list->Add(inner);
    list->Add(inner);
    EXPECT_EQ(ToJsonText(list), u"[[],[]]") << "twice beside each other is not inside itself";
    inner->Add(list);
    EXPECT_EQ(ToJsonText(list), u"[[],[]]");
    inner->Remove(1);
}

TEST_F(JsonTest, Writer_OfAVeryDeepTree_EndsWithoutACrash) {
    Value deep = std::make_shared<Collection>();
    for (int i = 0; i < 5000; ++i) {
        auto outer = std::make_shared<Collection>();
        outer->Add(deep);
        deep = outer;
    }
    EXPECT_EQ(ToJsonText(deep), String(1000, u'[') + String(1000, u']'));
}

TEST_F(JsonTest, Writer_OfALongText_EscapesEachUnit) {
    EXPECT_EQ(ToJsonText(String(300'000, u'/')).size(), 600'002u);
}

TEST_F(JsonTest, Writer_OfAnArray_WritesItsElements) {
    auto array = std::make_shared<Array>();
    array->dimensions = {{1, 12}};
    for (std::int32_t i = 1; i <= 12; ++i) array->elements.emplace_back(i * 10);
    EXPECT_EQ(ToJsonText(array), u"[10,20,30,40,50,60,70,80,90,100,110,120]");
}

TEST_F(JsonTest, Writer_OfAnArrayWithMoreDimensions_WritesItsBracketsOnly) {
    auto array = std::make_shared<Array>();
    array->dimensions = {{0, 1}, {0, 2}};
    array->elements.assign(6, Value(std::int32_t{7}));
    EXPECT_EQ(ToJsonText(array), u"[[,,],[,,]]");
}

TEST_F(JsonTest, Writer_OfAnArray_WritesNothingForWhatCannotBeFetched) {
    auto array = std::make_shared<Array>();
    EXPECT_EQ(ToJsonText(array), u"") << "no dimension yet";
    array->dimensions = {{-1, 1}};
    array->elements = {String(u"a"), String(u"b"), Null{}};
    EXPECT_EQ(ToJsonText(array), u"[,\"b\",null]") << "an index with a sign is no number once commas are put in";
    array->dimensions = {{0, -1}};
    EXPECT_EQ(ToJsonText(array), u"[]");
}

TEST_F(JsonTest, ContainersInsideAContainer_AreShared) {
    auto inner = std::make_shared<Collection>();
    auto outer = std::make_shared<Dictionary>();
    outer->Add(u"list", inner);
    inner->Add(std::int32_t{1});
    EXPECT_EQ(ToJsonText(outer), u"{\"list\":[1]}");
}

TEST(Dictionary, KeepsTheOrderOfInsertion_AndComparesExactly) {
    Dictionary dictionary;
    dictionary.Add(u"b", std::int32_t{1});
    dictionary.Add(u"a", std::int32_t{2});
    dictionary.Add(u"B", std::int32_t{3});
    EXPECT_EQ(dictionary.keys(), (std::vector<String>{u"b", u"a", u"B"}));
    EXPECT_THROW(dictionary.Add(u"a", Null{}), host::Error);
    EXPECT_EQ(std::get<std::int32_t>(dictionary.item(u"a")), 2);
}

TEST(Dictionary, ReadingAnAbsentKey_LeavesAnEmptyEntryBehind) {
    Dictionary dictionary;
    EXPECT_FALSE(dictionary.exists(u"x"));
    EXPECT_TRUE(std::holds_alternative<Empty>(dictionary.item(u"x")));
    EXPECT_TRUE(dictionary.exists(u"x"));
    EXPECT_EQ(dictionary.count(), 1);
}

TEST(Collection, CountsFromOne) {
    Collection list;
    list.Add(std::int32_t{10});
    list.Add(std::int32_t{20});
    EXPECT_EQ(std::get<std::int32_t>(list.Item(1)), 10);
    list.Remove(1);
    EXPECT_EQ(std::get<std::int32_t>(list.Item(1)), 20);
    EXPECT_THROW(list.Item(0), host::Error);
    EXPECT_THROW(list.Item(2), host::Error);
    EXPECT_THROW(list.Remove(2), host::Error);
}

String DecimalText(StringView number) {
    return Decimal::Parse(number)->Text();
}

TEST(Decimal, HoldsUpTo28Digits_AndRoundsMoreToTheEvenNeighbour) {
    EXPECT_EQ(DecimalText(u"1234567890123456789012345678"), u"1234567890123456789012345678");
    EXPECT_EQ(DecimalText(u"0.1234567890123456789012345678"), u"0.1234567890123456789012345678");
    EXPECT_EQ(DecimalText(u"1.00000000000000000000000000015"), u"1");
    EXPECT_EQ(DecimalText(u"1.0000000000000000000000000005"), u"1") << "a half goes to the even one";
    EXPECT_EQ(DecimalText(u"1.0000000000000000000000000015"), u"1.000000000000000000000000002");
    EXPECT_EQ(DecimalText(u"1.00000000000000000000000000050000000001"), u"1.000000000000000000000000001");
    EXPECT_EQ(DecimalText(u"9.9999999999999999999999999999"), u"10");
    EXPECT_EQ(DecimalText(u"-12345678901234567890123456785000"), u"-1.234567890123456789012345678E+31");
}

TEST(Decimal, DropsZerosThatSayNothing) {
    EXPECT_EQ(DecimalText(u"-0.0"), u"0");
    EXPECT_EQ(DecimalText(u"0e99"), u"0");
    EXPECT_EQ(DecimalText(u"12.50"), u"12.5");
    EXPECT_EQ(DecimalText(u"000100"), u"100");
    EXPECT_EQ(DecimalText(u"5e-0000000000001"), u"0.5");
    EXPECT_EQ(*Decimal::Parse(u"1.20e1"), *Decimal::Parse(u"+0012"));
}

TEST(Decimal, OfAnySize_ReadsBackEqual) {
    for (const StringView text : {u"1000000000000000000000000000", u"1E+28", u"1.5E+300", u"-7E+999999999",
                                  u"0.0000000000000000000000000000123", u"1E-30", u"-2.5E-999999999"}) {
        EXPECT_EQ(DecimalText(text), text);
    }
}

TEST(Decimal, OfAHugeText_IsReadInOneGo) {
    const String zeros(1'000'000, u'0');
    EXPECT_EQ(DecimalText(u"0." + zeros + u"1e1000001"), u"1");
    EXPECT_EQ(DecimalText(u"3" + zeros + u"e-1000000"), u"3");
    EXPECT_EQ(DecimalText(zeros + u"7"), u"7");
    EXPECT_EQ(DecimalText(String(1'000'000, u'9')), u"1E+1000000");
}

TEST(Decimal, BeyondAllBounds_Overflows_AndFarBelowOneIsZero) {
    EXPECT_THROW(Decimal::Parse(u"1e1000000001"), host::Error);
    EXPECT_THROW(Decimal::Parse(u"-1e99999999999999999999999"), host::Error);
    EXPECT_EQ(DecimalText(u"1e1000000000"), u"1E+1000000000");
    EXPECT_EQ(DecimalText(u"1e-1000000001"), u"0");
    EXPECT_EQ(DecimalText(u"-1e-99999999999999999999999"), u"0");
}

TEST(Decimal, OfTheWrongShape_IsNone) {
    for (const StringView text : {u"", u".", u"-", u"1-2", u"1e", u"1.2.3", u"e5", u"--1", u" 1"}) {
        EXPECT_FALSE(Decimal::Parse(text)) << host::ToUtf8(text);
    }
}

TEST(Decimal, OfAnInteger_IsThatInteger) {
    EXPECT_EQ(Decimal(-7), *Decimal::Parse(u"-7.0"));
    EXPECT_EQ(Decimal(0), Decimal());
    EXPECT_EQ(Decimal(std::numeric_limits<std::int64_t>::min()).Text(), u"-9223372036854775808");
    EXPECT_EQ(Decimal(1250, 4).Text(), u"0.125");
}

}  // namespace
}  // namespace kestrum
