// Which damage of an index is found, how it is named, and which of it is put right without losing an entry.
#include "apps/commandline/IndexCheck.h"

#include <gtest/gtest.h>

namespace kestrum::app {
namespace {

using Kinds = std::vector<FindingKind>;
using Positions = std::vector<String>;

class IndexCheckTest : public testing::Test {
  protected:
    IndexReport Check(const std::vector<IndexEntry>& entries, std::int64_t notedMs = 60000) {
        return CheckIndex(entries, notedMs, recording);
    }
    static IndexEntry Entry(const String& pos, const String& title, const String& url = u"") {
        return {pos, title, u"2026/1/5 9:00:00", url};
    }
    static Kinds KindsOf(const IndexReport& report) {
        Kinds kinds;
        for (const Finding& finding : report.findings) kinds.push_back(finding.kind);
        return kinds;
    }
    static Positions PositionsOf(const IndexMend& mend) {
        Positions positions;
        for (const IndexEntry& entry : mend.entries) positions.push_back(entry.pos);
        return positions;
    }

    Recording recording{{0, 5000, 10000, 12345, 20000}, 60000, {}};
};

TEST_F(IndexCheckTest, AWholeIndex_HasNoFinding) {
    const IndexReport report =
        Check({Entry(u"0", u"one"), Entry(u"-1", u"link", u"http://x"), Entry(u"5000", u"two"), Entry(u"20000", u"3")});
    EXPECT_EQ(KindsOf(report), Kinds{});
    EXPECT_FALSE(report.mend.changed);
}

TEST_F(IndexCheckTest, ALinkOnly_IsWhole) {
    EXPECT_EQ(KindsOf(Check({Entry(u"-1", u"link", u"http://x")})), Kinds{});
    EXPECT_EQ(KindsOf(Check({})), Kinds{});
}

TEST_F(IndexCheckTest, AllEntriesOffByTheSameTime_AreOneFindingAndMovedBack) {
    for (const std::int64_t offset : {200, -300, 1}) {
        const auto at = [&](std::int64_t ms) { return host::FromUtf8(std::to_string(ms + offset)); };
        const IndexReport report = Check({Entry(at(0), u"one"), Entry(at(5000), u"two"), Entry(at(12345), u"three")});
        ASSERT_EQ(KindsOf(report), Kinds{FindingKind::IndexShifted}) << offset;
        EXPECT_EQ(PositionsOf(report.mend), (Positions{u"0", u"5000", u"12345"}));
        EXPECT_TRUE(report.mend.changed);
    }
}

TEST_F(IndexCheckTest, AnIndexThatBeginsLateAtAKeyFrame_IsNotTakenForShifted) {
    recording.keyFrames = {0, 5000, 10000, 15000};
    EXPECT_EQ(KindsOf(Check({Entry(u"5000", u"one"), Entry(u"10000", u"two")})), Kinds{FindingKind::StartMissing});
}

TEST_F(IndexCheckTest, OneEntryOffItsChapter_IsMovedBackToIt) {
    recording.chapters = {{0, u"one"}, {5000, u"two"}, {12345, u"three"}};
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"5200", u"two"), Entry(u"12345", u"three")});
    ASSERT_EQ(KindsOf(report), Kinds{FindingKind::EntryShifted});
    EXPECT_EQ(report.findings[0].entry, 2);
    EXPECT_EQ(report.findings[0].values, (std::vector<String>{u"2", u"two", u"00:05.200", u"00:05"}));
    EXPECT_EQ(PositionsOf(report.mend), (Positions{u"0", u"5000", u"12345"}));
}

TEST_F(IndexCheckTest, AnEntryThatOnlyTheChaptersHave_IsMissingAndPutBackInItsPlace) {
    recording.chapters = {{0, u"one"}, {5000, u"two"}, {12345, u"three"}};
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"-1", u"link", u"u"), Entry(u"12345", u"three")});
    ASSERT_EQ(KindsOf(report), Kinds{FindingKind::EntryMissing});
    EXPECT_EQ(report.findings[0].title, u"two");
    EXPECT_EQ(PositionsOf(report.mend), (Positions{u"0", u"-1", u"5000", u"12345"})) << "a link stays where it was";
}

TEST_F(IndexCheckTest, AnIndexWithoutItsBeginning_IsToldEitherWay) {
    EXPECT_EQ(KindsOf(Check({Entry(u"5000", u"two")})), Kinds{FindingKind::StartMissing});
    recording.chapters = {{0, u"one"}, {5000, u"two"}};
    const IndexReport report = Check({Entry(u"5000", u"two")});
    EXPECT_EQ(KindsOf(report), Kinds{FindingKind::EntryMissing});
    EXPECT_EQ(PositionsOf(report.mend), (Positions{u"0", u"5000"}));
}

TEST_F(IndexCheckTest, TheSameEntryTwice_IsNamedAndTakenOutOnce) {
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"5000", u"two"), Entry(u"5000", u"two")});
    ASSERT_EQ(KindsOf(report), Kinds{FindingKind::EntryTwice});
    EXPECT_EQ(report.findings[0].entry, 3);
    EXPECT_EQ(PositionsOf(report.mend), (Positions{u"0", u"5000"}));
}

TEST_F(IndexCheckTest, TwoEntriesAtOnePlace_AreNamedAndBothStay) {
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"5000", u"two"), Entry(u"5000", u"other")});
    EXPECT_EQ(KindsOf(report), Kinds{FindingKind::PlaceTwice});
    EXPECT_EQ(report.mend.entries.size(), 3U);
    EXPECT_FALSE(report.mend.changed);
}

TEST_F(IndexCheckTest, EntriesOutOfOrder_AreNamedAndSortedWithoutLoss) {
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"20000", u"four"), Entry(u"-1", u"link", u"u"),
                                      Entry(u"5000", u"two"), Entry(u"10000", u"three")});
    ASSERT_EQ(KindsOf(report), (Kinds{FindingKind::Unsorted, FindingKind::Unsorted}));
    EXPECT_EQ(report.findings[0].entry, 4);
    EXPECT_EQ(report.findings[1].entry, 5);
    EXPECT_EQ(PositionsOf(report.mend), (Positions{u"0", u"5000", u"10000", u"20000", u"-1"}))
        << "a link stays behind the entry it follows";
}

TEST_F(IndexCheckTest, AnEntryBehindTheEnd_IsNamedWithTheEnd) {
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"60000", u"at the end"), Entry(u"70000", u"later")});
    ASSERT_EQ(KindsOf(report), (Kinds{FindingKind::PastEnd, FindingKind::PastEnd}));
    EXPECT_EQ(report.findings[0].values.back(), u"01:00");
}

TEST_F(IndexCheckTest, AnEntryOffTheKeyFrames_IsNamedWithTheOneBefore) {
    const IndexReport report = Check({Entry(u"0", u"one"), Entry(u"11000", u"two")});
    ASSERT_EQ(KindsOf(report), Kinds{FindingKind::NotOnKeyFrame});
    EXPECT_EQ(report.findings[0].values, (std::vector<String>{u"2", u"two", u"00:11", u"00:10"}));
    EXPECT_FALSE(report.mend.changed) << "opening the project takes it out";
}

TEST_F(IndexCheckTest, APositionThatIsNoNumber_IsNamedAndStays) {
    for (const char16_t* pos : {u"", u"abc", u"12 s", u"99999999999"}) {
        const IndexReport report = Check({Entry(u"0", u"one"), Entry(pos, u"two")});
        EXPECT_EQ(KindsOf(report), Kinds{FindingKind::PositionUnreadable}) << host::ToUtf8(pos);
        EXPECT_EQ(report.mend.entries.size(), 2U);
    }
}

TEST_F(IndexCheckTest, ALengthThatDiffersByOneMillisecond_IsADifference) {
    EXPECT_EQ(KindsOf(Check({Entry(u"0", u"one")}, 59999)), Kinds{FindingKind::Duration});
    EXPECT_EQ(KindsOf(Check({Entry(u"0", u"one")}, 60000)), Kinds{});
    EXPECT_EQ(KindsOf(CheckIndex({}, std::nullopt, recording)), Kinds{});
}

TEST_F(IndexCheckTest, WithoutARecording_EveryEntryLiesBehindItsEnd) {
    recording = {};
    EXPECT_EQ(KindsOf(Check({Entry(u"0", u"one"), Entry(u"-1", u"link", u"u")}, 0)), Kinds{FindingKind::PastEnd});
}

TEST_F(IndexCheckTest, ManyEntries_AreCheckedInNoTime) {
    std::vector<IndexEntry> entries;
    for (int i = 0; i < 20000; ++i) entries.push_back(Entry(host::FromUtf8(std::to_string(i % 7)), u"x"));
    EXPECT_GT(Check(entries).findings.size(), 19000U);
}

TEST_F(IndexCheckTest, EveryKindHasAWordAndThreeSentences) {
    for (const FindingText& text : FindingTexts()) {
        EXPECT_EQ(&TextOf(text.kind), &text);
        EXPECT_GT(std::string(text.word).size(), 3U);
        for (const char16_t* sentence : {text.what, text.means, text.repair}) {
            const String words = sentence;
            EXPECT_GT(words.size(), 15U);
            EXPECT_NE(words.find_last_of(u".1"), String::npos);
        }
    }
}

}  // namespace
}  // namespace kestrum::app
