#include "project/CTime.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "host/Error.h"

namespace kestrum {
namespace {

TEST(CTime, GetString_OfNoPosition_IsADash) {
    EXPECT_EQ(CTime::GetString(-1, u"ms"), u"-");
}

TEST(CTime, GetString_OfZero_HasNoFraction) {
    EXPECT_EQ(CTime::GetString(0, u"ms"), u"00:00");
}

TEST(CTime, GetString_ShowsThreeDecimalsOnlyWhereThereIsAFraction) {
    EXPECT_EQ(CTime::GetString(5000, u""), u"00:05");
    EXPECT_EQ(CTime::GetString(5250, u"ms"), u"00:05.250");
    EXPECT_EQ(CTime::GetString(1, u"ms"), u"00:00.001");
    EXPECT_EQ(CTime::GetString(5250, u"sec"), u"00:05");
}

TEST(CTime, GetString_ShowsHoursUnpaddedAndOnlyAboveZero) {
    EXPECT_EQ(CTime::GetString(3661000, u"ms"), u"1:01:01");
    EXPECT_EQ(CTime::GetString(3599999, u"ms"), u"59:59.999");
    EXPECT_EQ(CTime::GetString(36000000, u"ms"), u"10:00:00");
}

TEST(CTime, GetString_WhenRoundingReachesSixtySeconds_CarriesOver) {
    EXPECT_EQ(CTime::GetString(59600, u"sec"), u"01:00");
    EXPECT_EQ(CTime::GetString(3599600, u"sec"), u"1:00:00");
}

TEST(CTime, GetString_RoundsHalvesToTheEvenSecond) {
    EXPECT_EQ(CTime::GetString(2500, u"sec"), u"00:02");
    EXPECT_EQ(CTime::GetString(3500, u"sec"), u"00:04");
}

TEST(CTime, GetString_OfTheLongestLength_Works) {
    EXPECT_EQ(CTime::GetString(std::numeric_limits<std::int32_t>::max(), u"sec"), u"596:31:24");
}

TEST(CTime, GetString_OfOtherModes_IsExact) {
    for (const StringView mode : {u"", u"ms", u"SEC", u"second"}) EXPECT_EQ(CTime::GetString(1500, mode), u"00:01.500");
}

TEST(CTime, GetString_ShowsTheSinglePrecisionOfTheSeconds) {
    for (std::int32_t ms = 0; ms < 60000; ++ms) {
        char expected[16];
        std::snprintf(expected, sizeof expected, ms % 1000 == 0 ? "00:%02.0f" : "00:%06.3f",
                      static_cast<double>(static_cast<float>(ms / 1000.0)));
        ASSERT_EQ(host::ToUtf8(CTime::GetString(ms, u"ms")), expected);
    }
}

TEST(CTime, GetString_OfNegativeLengths_GoesThroughTheSameArithmetic) {
    EXPECT_EQ(CTime::GetString(-5000, u"ms"), u"00:-05");
    EXPECT_EQ(CTime::GetString(-2, u"ms"), u"00:-00.002");
    EXPECT_EQ(CTime::GetString(-61000, u"sec"), u"-01:-01");
    EXPECT_EQ(CTime::GetString(-3600000, u"ms"), u"00:00") << "hours show above 0 only";
    EXPECT_NO_THROW(CTime::GetString(std::numeric_limits<std::int32_t>::min(), u"ms"));
}

TEST(CTime, GetSecond_ReadsHoursMinutesAndSeconds) {
    EXPECT_EQ(CTime::GetSecond(u"1:02:03"), 3723000);
    EXPECT_EQ(CTime::GetSecond(u"02:03.5"), 123500);
}

TEST(CTime, GetSecond_ReadsLeadingNumbersAndCountsEmptyPartsAsZero) {
    EXPECT_EQ(CTime::GetSecond(u":7"), 7000);
    EXPECT_EQ(CTime::GetSecond(u"1:"), 60000);
    EXPECT_EQ(CTime::GetSecond(u"1:05 min"), 65000);
}

TEST(CTime, GetSecond_WithMoreThanTwoColons_TakesTheFirstTwoPartsAsMinutesAndSeconds) {
    EXPECT_EQ(CTime::GetSecond(u"1:02:03:04"), 62000);
}

TEST(CTime, GetSecond_WithoutAColon_Fails) {
    EXPECT_THROW(CTime::GetSecond(u"7"), host::Error);
    EXPECT_THROW(CTime::GetSecond(u""), host::Error);
}

TEST(CTime, GetSecond_OfTheTextForNoPosition_Fails) {
    EXPECT_THROW(CTime::GetSecond(u"-"), host::Error);
}

TEST(CTime, GetSecond_OfFractionsInEveryPart_CountsThem) {
    EXPECT_EQ(CTime::GetSecond(u"1.5:0:0"), 5400000);
    EXPECT_EQ(CTime::GetSecond(u"0.5:0"), 30000);
    EXPECT_EQ(CTime::GetSecond(u"-1:30"), -30000);
    EXPECT_EQ(CTime::GetSecond(u"a:b:c"), 0);
    EXPECT_EQ(CTime::GetSecond(u"::"), 0);
}

TEST(CTime, GetSecond_RoundsHalvesToTheEvenMillisecond) {
    EXPECT_EQ(CTime::GetSecond(u"0:0.0005"), 0);
    EXPECT_EQ(CTime::GetSecond(u"0:0.0015"), 2);
}

TEST(CTime, GetSecond_OfASumThatDoesNotFit_Fails) {
    EXPECT_THROW(CTime::GetSecond(u"1000000:0:0"), host::Error);
}

TEST(CTime, GetSecond_GivesBackWhatGetStringWrote) {
    for (const std::int32_t ms : {0, 1, 999, 1000, 59999, 60000, 123456, 3599999, 3600001, 86399999})
        EXPECT_EQ(CTime::GetSecond(CTime::GetString(ms, u"ms")), ms);
}

}  // namespace
}  // namespace kestrum
