#include "support/DateText.h"

#include <gtest/gtest.h>

namespace kestrum {
namespace {

TEST(DateText, Text_PadsTheTimeButNotTheDate) {
    EXPECT_EQ(DateTimeText({2024, 3, 7, 9, 5, 0, 250}), u"2024/3/7 09:05:00");
    EXPECT_EQ(DateTimeText({2024, 12, 31, 23, 59, 59, 0}), u"2024/12/31 23:59:59");
}

TEST(DateText, Parse_ReadsWhatTextWrites) {
    const auto time = ParseDateTime(u"2024/3/7 09:05:01");
    ASSERT_TRUE(time);
    EXPECT_EQ(DateTimeText(*time), u"2024/3/7 09:05:01");
    EXPECT_EQ(DateTimeText(*ParseDateTime(u"2024/03/07 9:5:1")), u"2024/3/7 09:05:01");
    EXPECT_EQ(DateTimeText(*ParseDateTime(u"2024/3/7")), u"2024/3/7 00:00:00");
}

TEST(DateText, Parse_OfNoDate_IsNone) {
    for (const StringView text :
         {u"", u"today", u"2024-03-07", u"2024/3", u"2024/13/1", u"2023/2/29", u"2024/3/7 24:00:00", u"2024/3/7 09:05",
          u"2024/3/7 09:05:01 x", u"2024/3/0", u"999999/1/1"}) {
        EXPECT_FALSE(ParseDateTime(text)) << host::ToUtf8(text);
    }
    EXPECT_TRUE(ParseDateTime(u"2024/2/29"));
}

TEST(DateText, SecondsBetween_CrossesMonthsAndLeapDays) {
    EXPECT_EQ(SecondsBetween({2024, 2, 28, 23, 59, 50, 0}, {2024, 3, 1, 0, 0, 10, 0}), 86420);
    EXPECT_EQ(SecondsBetween({2023, 2, 28, 0, 0, 0, 0}, {2023, 3, 1, 0, 0, 0, 0}), 86400);
    EXPECT_EQ(SecondsBetween({2024, 1, 1, 0, 0, 10, 0}, {2024, 1, 1, 0, 0, 0, 0}), -10);
    EXPECT_EQ(SecondsBetween({1999, 12, 31, 23, 59, 59, 0}, {2000, 1, 1, 0, 0, 0, 0}), 1);
}

}  // namespace
}  // namespace kestrum
