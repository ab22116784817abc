#include "support/cStringBuilder.h"

#include <gtest/gtest.h>

namespace kestrum {
namespace {

TEST(cStringBuilder, BuildsAText) {
    cStringBuilder text;
    text.Append(u"one");
    text.AppendByVal(u" two");
    text.AppendNL(u" three");
    EXPECT_EQ(text.toString(), u"one two three\r\n");
    EXPECT_EQ(text.Length(), 15);
    text.SetTheString(u"new");
    EXPECT_EQ(text.TheString(), u"new");
}

TEST(cStringBuilder, Insert_BeyondTheEnd_DoesNothing) {
    cStringBuilder text;
    text.Append(u"ac");
    text.Insert(1, u"b");
    text.InsertByVal(3, u"d");
    text.Insert(5, u"x");
    text.Insert(-1, u"x");
    EXPECT_EQ(text.toString(), u"abcd");
}

TEST(cStringBuilder, Remove_TakesWhatThereIs) {
    cStringBuilder text;
    text.Append(u"abcdef");
    text.Remove(1, 2);
    EXPECT_EQ(text.toString(), u"adef");
    text.Remove(2, 100);
    EXPECT_EQ(text.toString(), u"ad");
    text.Remove(2, 1);
    text.Remove(-1, 1);
    text.Remove(0, 0);
    EXPECT_EQ(text.toString(), u"ad");
}

TEST(cStringBuilder, Find_GivesThePosition) {
    cStringBuilder text;
    text.Append(u"abcabc");
    EXPECT_EQ(text.Find(u"bc"), 1);
    EXPECT_EQ(text.Find(u"bc", 2), 4);
    EXPECT_EQ(text.Find(u"x"), -1);
}

TEST(cStringBuilder, GrowsByWholeChunks) {
    cStringBuilder text;
    EXPECT_EQ(text.ChunkSize(), 8192);
    EXPECT_EQ(text.Capacity(), 0);
    text.Append(u"a");
    EXPECT_EQ(text.Capacity(), 8192);
    text.Append(String(8192, u'x'));
    EXPECT_EQ(text.Capacity(), 16384);
    text.HeapMinimize();
    EXPECT_EQ(text.Capacity(), 8193);
    text.SetChunkSize(100);
    text.Append(u"a");
    EXPECT_EQ(text.Capacity(), 8293);
    text.Clear();
    EXPECT_EQ(text.Capacity(), 0);
    EXPECT_EQ(text.Length(), 0);
}

}  // namespace
}  // namespace kestrum
