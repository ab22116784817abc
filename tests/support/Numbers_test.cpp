#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestrum {
namespace {

/// Number of the host::Error that `call` raises, 0 if it raises none.
template <class Call>
std::int32_t ErrorOf(Call&& call) {
    try {
        call();
    } catch (const host::Error& error) {
        return static_cast<std::int32_t>(error.Number());
    }
    return 0;
}

TEST(Numbers, StrictConversion_TakesAWholeNumberText) {
    EXPECT_EQ(ToInt32(u"4711"), 4711);
    EXPECT_EQ(ToInt32(u" -1 "), -1);
    EXPECT_EQ(ToInt32(u"+7"), 7);
    EXPECT_EQ(ToInt32(u"1e3"), 1000);
    EXPECT_EQ(ToInt16(u"12"), 12);
    EXPECT_DOUBLE_EQ(ToDouble(u".5"), 0.5);
    EXPECT_DOUBLE_EQ(ToDouble(u"2."), 2.0);
}

TEST(Numbers, StrictConversion_RoundsHalfToEven) {
    EXPECT_EQ(ToInt32(u"0.5"), 0);
    EXPECT_EQ(ToInt32(u"1.5"), 2);
    EXPECT_EQ(ToInt32(u"2.5"), 2);
    EXPECT_EQ(ToInt32(u"-2.5"), -2);
    EXPECT_EQ(ToInt16(3.5), 4);
    EXPECT_EQ(ToInt32(1365.33), 1365);
}

TEST(Numbers, StrictConversion_OfWhatIsNoNumber_IsATypeMismatch) {
    for (const StringView text : {u"", u" ", u"12x", u"x", u"1 2", u".", u"-", u"1e", u"inf", u"nan", u"0x10", u"１"}) {
        EXPECT_EQ(ErrorOf([&] { ToInt32(text); }), 13) << host::ToUtf8(text);
    }
}

TEST(Numbers, StrictConversion_OfANumberThatDoesNotFit_Overflows) {
    EXPECT_EQ(ToInt32(u"2147483647"), 2147483647);
    EXPECT_EQ(ErrorOf([] { ToInt32(u"2147483648"); }), 6);
    EXPECT_EQ(ToInt32(u"-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(ErrorOf([] { ToInt16(u"32768"); }), 6);
    EXPECT_EQ(ErrorOf([] { ToInt16(32767.5); }), 6);
    EXPECT_EQ(ErrorOf([] { ToInt32(std::int64_t{1} << 31); }), 6);
    EXPECT_EQ(ErrorOf([] { ToDouble(u"1e999"); }), 6);
    EXPECT_EQ(ToDouble(u"1e-999"), 0);
}

TEST(Numbers, Val_ReadsTheLeadingNumber_AndNeverFails) {
    EXPECT_DOUBLE_EQ(Val(u"640 px"), 640);
    EXPECT_DOUBLE_EQ(Val(u"  -3.25abc"), -3.25);
    EXPECT_DOUBLE_EQ(Val(u"1 2 3"), 123) << "blanks are ignored";
    EXPECT_DOUBLE_EQ(Val(u"+4"), 4);
    EXPECT_DOUBLE_EQ(Val(u"2e2x"), 200);
    EXPECT_DOUBLE_EQ(Val(u"2ex"), 2);
    EXPECT_DOUBLE_EQ(Val(u""), 0);
    EXPECT_DOUBLE_EQ(Val(u"abc"), 0);
    EXPECT_DOUBLE_EQ(Val(u"7ü8"), 7);
}

TEST(Numbers, Div_ByZero_IsAnErrorOfItsOwn) {
    EXPECT_DOUBLE_EQ(Div(7, 2), 3.5);
    EXPECT_EQ(ErrorOf([] { Div(1, 0); }), 11);
    EXPECT_EQ(ErrorOf([] { Div(0, 0); }), 6);
}

TEST(Numbers, ItemAt_CountsFromOne) {
    std::vector<int> list{10, 20};
    EXPECT_EQ(ItemAt(list, 1), 10);
    EXPECT_EQ(ItemAt(list, 2), 20);
    EXPECT_EQ(ErrorOf([&] { ItemAt(list, 0); }), 9);
    EXPECT_EQ(ErrorOf([&] { ItemAt(list, 3); }), 9);
}

TEST(Numbers, FormatPattern_FillsZerosAndDropsTrailingPlaces) {
    EXPECT_EQ(FormatPattern(5, u"00"), u"05");
    EXPECT_EQ(FormatPattern(125, u"00"), u"125");
    EXPECT_EQ(FormatPattern(5.25, u"00.000"), u"05.250");
    EXPECT_EQ(FormatPattern(1.8, u"0.##"), u"1.8");
    EXPECT_EQ(FormatPattern(1.806, u"0.##"), u"1.81");
    EXPECT_EQ(FormatPattern(2, u"0.##"), u"2");
    EXPECT_EQ(FormatPattern(0, u"0"), u"0");
    EXPECT_EQ(FormatPattern(0.004, u"0.##"), u"0");
    EXPECT_EQ(FormatPattern(0.25, u"#.##"), u".25");
    EXPECT_EQ(FormatPattern(42.4, u"00.0%"), u"42.4%");
}

TEST(Numbers, FormatPattern_RoundsHalfAwayFromZero_OnTheDecimalDigits) {
    EXPECT_EQ(FormatPattern(0.5, u"0"), u"1");
    EXPECT_EQ(FormatPattern(2.5, u"0"), u"3");
    EXPECT_EQ(FormatPattern(-2.5, u"0"), u"-3");
    EXPECT_EQ(FormatPattern(1.005, u"0.00"), u"1.01");
    EXPECT_EQ(FormatPattern(99.95, u"00.0"), u"100.0");
    EXPECT_EQ(FormatPattern(-0.2, u"0"), u"0");
    EXPECT_EQ(FormatPattern(123456789012.0, u"0"), u"123456789012");
}

}  // namespace
}  // namespace kestrum
