// Readers of outside text against texts that nobody meant: they end, they raise host::Error at most, and what they
// accept they write again unchanged. The texts are made from a fixed seed.
#include <gtest/gtest.h>

#include <random>

#include "host/Error.h"
#include "support/DateText.h"
#include "support/JSON.h"
#include "support/Numbers.h"
#include "support/modGlobal.h"
#include "support/modXml.h"

namespace kestrum {
namespace {

/// Random texts from the given pieces.
class Texts {
  public:
    explicit Texts(std::vector<String> pieces) : m_pieces(std::move(pieces)) {}
    String Next() {
        String text;
        for (std::size_t i = m_random() % 24; i > 0; --i) text += m_pieces[m_random() % m_pieces.size()];
        return text;
    }

  private:
    std::vector<String> m_pieces;
    std::mt19937 m_random{20240307};
};

TEST(HostileText, Json_EndsOnAnyText_AndWritesWhatItReadCleanly) {
    Texts texts({u"{",    u"}",   u"[",    u"]",  u",",    u":", u"\"", u"'",  u"\\", u"\\u00",
                 u"true", u"tru", u"null", u"n",  u"f",    u"1", u"-",  u".5", u"e9", u"/",
                 u"*",    u"//",  u"/*",   u"*/", u"\r\n", u" ", u"(",  u")",  u"a",  u"é"});
    support::State state;
    int clean = 0;
    for (int i = 0; i < 40000; ++i) {
        const String text = texts.Next();
        const Value value = JSON::ParseJson(state, text);
        const String written = JSON::ToJsonText(value);
        ASSERT_LE(written.size(), 8 * text.size() + 8) << host::ToUtf8(text);
        const bool readable = JSON::GetJsonErrors(state).empty() && written.find(u":,") == String::npos &&
                              written.find(u":}") == String::npos;
        if (!readable) continue;
        ++clean;
        ASSERT_EQ(JSON::ToJsonText(JSON::ParseJson(state, written)), written) << host::ToUtf8(text);
    }
    EXPECT_GT(clean, 100) << "the texts must reach the good paths too";
}

TEST(HostileText, Json_OfAVeryLongBrokenArray_EndsSoon) {
    support::State state;
    String text = u"[";
    for (int i = 0; i < 20000; ++i) text += u"tru,";
    JSON::ParseJson(state, text);
    EXPECT_LT(JSON::GetJsonErrors(state).size(), 2 * text.size());
}

TEST(HostileText, Xml_IsRefusedOrReadAlikeAfterItWasWritten) {
    Texts texts({u"<a>",   u"</a>",   u"<b x=\"1\"", u"/>",        u">",    u"<",   u"&",
                 u"&amp;", u"&#x41;", u"]]>",        u"<![CDATA[", u"<!--", u"-->", u"<?xml version=\"1.0\"?>",
                 u"\r\n",  u" ",      u"text",       u"講",        u"\"",   u"'"});
    int accepted = 0;
    for (int i = 0; i < 3000; ++i) {
        const String text = u"<a>" + texts.Next() + u"</a>";
        try {
            const String written = modXml::Document::Parse(text).Xml();
            ++accepted;
            ASSERT_EQ(modXml::Document::Parse(written).Xml(), written) << host::ToUtf8(text);
        } catch (const host::Error& error) {
            ASSERT_EQ(error.Number(), host::ErrorNumber::TypeMismatch);
        }
    }
    EXPECT_GT(accepted, 10);
}

TEST(HostileText, NumbersAndDates_RaiseTheirOwnErrorsOnly) {
    Texts texts(
        {u"0", u"1", u"9", u"-", u"+", u".", u"e", u"E", u" ", u"/", u":", u"2024", u"99999999999", u"x", u"１"});
    for (int i = 0; i < 20000; ++i) {
        const String text = texts.Next();
        (void)Val(text);
        if (const auto time = ParseDateTime(text)) {
            ASSERT_EQ(DateTimeText(*ParseDateTime(DateTimeText(*time))), DateTimeText(*time));
        }
        try {
            const std::optional<Decimal> number = Decimal::Parse(text);
            if (number) {
                ASSERT_EQ(*Decimal::Parse(number->Text()), *number) << host::ToUtf8(text);
            }
            (void)ToInt32(text);
        } catch (const host::Error& error) {
            const bool known =
                error.Number() == host::ErrorNumber::Overflow || error.Number() == host::ErrorNumber::TypeMismatch;
            ASSERT_TRUE(known) << host::ToUtf8(text);
        }
    }
}

TEST(HostileText, HexText_DecodesWithoutReadingBeyondItsEnd) {
    Texts texts({u"&H", u"4", u"1", u"00", u"zz", u"é"});
    for (int i = 0; i < 20000; ++i) {
        const String text = texts.Next();
        ASSERT_LE(modGlobal::DecodeHexText(text).size() * 4, text.size());
    }
}

}  // namespace
}  // namespace kestrum
