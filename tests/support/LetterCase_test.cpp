#include "support/LetterCase.h"

#include <gtest/gtest.h>

namespace kestrum {
namespace {

TEST(LetterCase, ChangesLettersOfManyScripts_AndNothingElse) {
    EXPECT_EQ(LowerLetters(u"ÄÖÜ ŁÓDŹ ΑΩΆΈΏ ЖЯЁ ＡＺ Ÿ"), u"äöü łódź αωάέώ жяё ａｚ ÿ");
    EXPECT_EQ(UpperLetters(u"äöü łódź αωάέώ жяё ａｚ ÿ"), u"ÄÖÜ ŁÓDŹ ΑΩΆΈΏ ЖЯЁ ＡＺ Ÿ");
    for (const StringView same : {u"", u"123 [\\]^_`{|}@", u"×÷ß", u"講座", u"\xD83C\xDF93"}) {
        EXPECT_EQ(LowerLetters(same), same);
        EXPECT_EQ(UpperLetters(same), same);
    }
}

TEST(LetterCase, IsItsOwnInverse_OnEveryLetterItChanges) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const String letter(1, static_cast<char16_t>(unit));
        const String lower = LowerLetters(letter);
        if (lower != letter) {
            ASSERT_EQ(UpperLetters(lower), letter) << unit;
            ASSERT_EQ(LowerLetters(lower), lower) << unit;
        }
        const String upper = UpperLetters(letter);
        if (upper != letter) {
            ASSERT_EQ(LowerLetters(upper), letter) << unit;
        }
    }
}

}  // namespace
}  // namespace kestrum
