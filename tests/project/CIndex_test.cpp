#include "project/CIndex.h"

#include <gtest/gtest.h>

#include "ProjectWorld.h"
#include "host/Error.h"
#include "support/Numbers.h"

namespace kestrum {
namespace {

class CIndexTest : public testing::Test {
  protected:
    void Add(const String& title, const String& pos, const String& url = u"", bool selected = false) {
        index.Add(title, pos, u"2024/3/7 09:05:00", url, u"", u"", selected);
    }
    void AddPiece(const String& pos, const String& end) { index.Add(u"", pos, u"", u"", u"", end, true); }

    test::ProjectWorld w;
    CIndex index;
};

TEST_F(CIndexTest, Clear_WithNothingSelected_EmptiesTheList) {
    Add(u"a", u"0");
    Add(u"b", u"5000");
    index.Clear();
    EXPECT_EQ(index.count(), 0);
}

TEST_F(CIndexTest, Clear_WithAllSelected_ChangesNothing) {
    Add(u"a", u"0", u"", true);
    Add(u"b", u"5000", u"", true);
    index.Clear();
    ASSERT_EQ(index.count(), 2);
    EXPECT_EQ(index.items.Item(2).title, u"b");
}

TEST_F(CIndexTest, Clear_KeepsTheSelectedInOrder) {
    Add(u"a", u"0", u"", true);
    Add(u"b", u"5000");
    Add(u"c", u"6000", u"", true);
    index.Clear();
    ASSERT_EQ(index.count(), 2);
    EXPECT_EQ(index.items.Item(1).title, u"a");
    EXPECT_EQ(index.items.Item(2).title, u"c");
}

TEST_F(CIndexTest, Clear_KeepsTheTickedOfAVeryLongList) {
    for (int i = 0; i < 100000; ++i) Add(ToText(i), ToText(i), u"", i % 2 == 1);
    index.Clear();
    ASSERT_EQ(index.count(), 50000);
    EXPECT_EQ(index.items.Item(1).title, u"1");
    EXPECT_EQ(index.items.Item(50000).title, u"99999");
}

TEST_F(CIndexTest, CopyTo_IntoItself_DoublesTheListOnce) {
    Add(u"a", u"0", u"", true);
    Add(u"b", u"5000");
    index.CopyTo(index);
    ASSERT_EQ(index.count(), 4);
    EXPECT_EQ(index.items.Item(3).title, u"a");
    EXPECT_FALSE(index.items.Item(3).Selected);
}

TEST_F(CIndexTest, CopyTo_AppendsToWhatTheTargetHolds) {
    Add(u"a", u"0");
    CIndex target;
    target.Add(u"first", u"0", u"", u"", u"", u"", true);
    index.CopyTo(target);
    ASSERT_EQ(target.count(), 2);
    EXPECT_TRUE(target.items.Item(1).Selected);
}

TEST_F(CIndexTest, CopyTo_CopiesAllButSizeAndSelection) {
    Add(u"a", u"0", u"http://x", true);
    index.items.Item(1).size = u"17";
    index.items.Item(1).PosEnd = u"500";
    CIndex target;
    index.CopyTo(target);
    ASSERT_EQ(target.count(), 1);
    const CIndexItem& copy = target.items.Item(1);
    EXPECT_EQ(copy.title, u"a");
    EXPECT_EQ(copy.Url, u"http://x");
    EXPECT_EQ(copy.PosEnd, u"500");
    EXPECT_EQ(copy.RecDate, u"2024/3/7 09:05:00");
    EXPECT_FALSE(copy.Selected);
    EXPECT_EQ(copy.size, u"");
}

TEST_F(CIndexTest, UpdateLen_LeavesLinksOutAndEndsAtTheMedia) {
    w.PutPackage("x", 12000, {0, 5000});
    Add(u"a", u"0");
    Add(u"link", u"-1", u"http://x");
    Add(u"b", u"5000");
    index.UpdateLen(w.world.ksLib, test::ProjectWorld::kPackage);
    EXPECT_EQ(index.items.Item(1).PosEnd, u"5000");
    EXPECT_EQ(index.items.Item(1).Length, u"00:05");
    EXPECT_EQ(index.items.Item(2).Length, u"-");
    EXPECT_EQ(index.items.Item(3).PosEnd, u"12000");
    EXPECT_EQ(index.items.Item(3).Length, u"00:07");
}

TEST_F(CIndexTest, UpdateLen_OfAnEmbeddedPlayer_ShowsItsRunningTime) {
    Add(u"player", u"-65000", u"vplayer?id=3");
    index.UpdateLen(w.world.ksLib, test::ProjectWorld::kPackage);
    EXPECT_EQ(index.items.Item(1).Length, u"01:05");
}

TEST_F(CIndexTest, UpdateLen_OfALinkThatNamesAPlayer_ShowsItsMillisecond) {
    Add(u"link", u"-1", u"http://x/vplayer");
    Add(u"other", u"-65000", u"http://x");
    index.UpdateLen(w.world.ksLib, test::ProjectWorld::kPackage);
    EXPECT_EQ(index.items.Item(1).Length, u"00:00");
    EXPECT_EQ(index.items.Item(2).Length, u"-") << "no player, no running time";
    EXPECT_EQ(index.items.Item(1).PosEnd, u"");
}

TEST_F(CIndexTest, UpdateLen_OfManyEntries_AsksForTheLengthOnce) {
    w.PutPackage("x", 12000, {0});
    for (int i = 0; i < 5000; ++i) {
        Add(u"slide", ToText(i));
        Add(u"link", u"-1", u"http://x");
    }
    index.UpdateLen(w.world.ksLib, test::ProjectWorld::kPackage);
    EXPECT_EQ(w.world.faults.CountOf(u"ksLib.GetLength"), 1);
    EXPECT_EQ(index.items.Item(9999).PosEnd, u"12000");
}

TEST_F(CIndexTest, UpdatePos_LaysPiecesEndToEnd) {
    AddPiece(u"2000", u"3000");
    Add(u"link", u"-1", u"http://x", true);
    AddPiece(u"7000", u"9000");
    index.UpdatePos();
    EXPECT_EQ(index.items.Item(1).pos, u"0");
    EXPECT_EQ(index.items.Item(1).PosEnd, u"1000");
    EXPECT_EQ(index.items.Item(2).pos, u"-1");
    EXPECT_EQ(index.items.Item(3).pos, u"1000");
    EXPECT_EQ(index.items.Item(3).PosEnd, u"3000");
}

TEST_F(CIndexTest, Neighbours_BeyondTheEnds_AreNone) {
    AddPiece(u"0", u"1000");
    Add(u"link", u"-1", u"http://x");
    EXPECT_EQ(index.PrevKsPosEnd(1), -1);
    EXPECT_EQ(index.NextKsPos(2), -1);
    EXPECT_EQ(index.NextKsPos(1), -1);
}

TEST_F(CIndexTest, Neighbours_SkipLinks) {
    AddPiece(u"0", u"1000");
    Add(u"link", u"-1", u"http://x");
    AddPiece(u"1000", u"4000");
    EXPECT_EQ(index.PrevKsPosEnd(3), 1000);
    EXPECT_EQ(index.NextKsPos(1), 1000);
}

TEST_F(CIndexTest, Neighbours_TakeTheNearest) {
    AddPiece(u"0", u"1000");
    AddPiece(u"1000", u"2000");
    AddPiece(u"2000", u"3000");
    AddPiece(u"3000", u"4000");
    EXPECT_EQ(index.PrevKsPosEnd(3), 2000);
    EXPECT_EQ(index.NextKsPos(2), 2000);
    EXPECT_EQ(index.NextKsPos(4), -1);
    EXPECT_EQ(index.NextKsPos(0), 0);
    EXPECT_EQ(index.PrevKsPosEnd(5), 4000);
    EXPECT_THROW(index.PrevKsPosEnd(6), host::Error);
}

TEST_F(CIndexTest, UpdatePos_RoundsAPieceToWholeMilliseconds) {
    AddPiece(u"0.5", u"3");
    index.UpdatePos();
    EXPECT_EQ(index.items.Item(1).pos, u"0");
    EXPECT_EQ(index.items.Item(1).PosEnd, u"2");
}

TEST_F(CIndexTest, APositionThatIsNoNumber_GoesToTheCaller) {
    Add(u"a", u"soon");
    EXPECT_THROW(index.UpdateLen(w.world.ksLib, test::ProjectWorld::kPackage), host::Error);
    EXPECT_THROW(index.UpdatePos(), host::Error);
}

TEST_F(CIndexTest, AnItemOutsideTheList_GoesToTheCaller) {
    EXPECT_THROW(index.items.Item(0), host::Error);
    EXPECT_THROW(index.items.Item(1), host::Error);
}

TEST_F(CIndexTest, UpdatePos_BeyondTheRange_Overflows) {
    AddPiece(u"0", u"2000000000");
    AddPiece(u"0", u"2000000000");
    EXPECT_THROW(index.UpdatePos(), host::Error);
}

}  // namespace
}  // namespace kestrum
