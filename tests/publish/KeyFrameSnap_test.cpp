#include "publish/KeyFrameSnap.h"

#include <gtest/gtest.h>

#include "host/Error.h"

namespace kestrum::publish {
namespace {

using Frames = std::vector<std::int32_t>;

TEST(ReadKeyFrames, TurnsSecondsIntoMilliseconds) {
    EXPECT_EQ(ReadKeyFrames(u"0.000000\n2.0004\n  3.1  \n"), (Frames{0, 2000, 3100}));
}

TEST(ReadKeyFrames, EndsAtTheFirstBlankLine) {
    EXPECT_EQ(ReadKeyFrames(u"0\r\n1\r\n\r\n2\r\n"), (Frames{0, 1000}));
    EXPECT_TRUE(ReadKeyFrames(u"").empty());
}

TEST(ReadKeyFrames, RefusesWhatIsNoTime) {
    EXPECT_THROW(ReadKeyFrames(u"0\nx\n"), host::Error);
    EXPECT_THROW(ReadKeyFrames(u"3000000\n"), host::Error);
}

TEST(SnapToKeyFrame, StaysOnAKeyFrame) {
    EXPECT_EQ(SnapToKeyFrame(3000, {0, 3000, 6000}), 3000);
}

TEST(SnapToKeyFrame, GoesBackUnlessTheNextIsNear) {
    const Frames frames = {0, 3000, 6000};
    EXPECT_EQ(SnapToKeyFrame(2799, frames), 0);
    EXPECT_EQ(SnapToKeyFrame(2800, frames), 3000);
    EXPECT_EQ(SnapToKeyFrame(5999, frames), 6000);
}

TEST(SnapToKeyFrame, TakesTheNextNearOneEvenFromAKeyFrame) {
    EXPECT_EQ(SnapToKeyFrame(3000, {0, 3000, 3200, 6000}), 3200);
}

TEST(SnapToKeyFrame, BeyondTheLastPair_IsTheLastKeyFrame) {
    EXPECT_EQ(SnapToKeyFrame(6000, {0, 3000, 6000}), 6000);
    EXPECT_EQ(SnapToKeyFrame(99999, {0, 3000, 6000}), 6000);
}

TEST(SnapToKeyFrame, WithFewerThanTwo_IsZero) {
    EXPECT_EQ(SnapToKeyFrame(5000, {}), 0);
    EXPECT_EQ(SnapToKeyFrame(5000, {4000}), 0);
}

TEST(SnapIndex, LeavesTheFirstEntryAsItIs) {
    IndexItems index;
    for (const char16_t* pos : {u"70", u"3100"}) {
        CIndexItem item;
        item.pos = pos;
        index.Add(item);
    }
    SnapIndex(index, {0, 3000, 6000});
    EXPECT_EQ(index.Item(1).pos, u"70");
    EXPECT_EQ(index.Item(2).pos, u"3000");
}

}  // namespace
}  // namespace kestrum::publish
