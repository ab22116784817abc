#include "display/modRegion.h"

#include <gtest/gtest.h>

#include <ostream>

#include "DisplayWorld.h"

namespace kestrum {
namespace modRegion {
void PrintTo(Size size, std::ostream* out) {
    *out << size.width << "x" << size.height;
}
}  // namespace modRegion

namespace {

using modRegion::Size;
using modRegion::SlideRegionOf;

TEST(SlideRegion, OfANarrowSlide_KeepsTheHeight) {
    EXPECT_EQ(SlideRegionOf({1920, 1080}, {720, 540}), (Size{1440, 1080}));
}

TEST(SlideRegion, OfAWideSlideOnAnAlmostEquallyWideScreen_IsRoundedDownToFour) {
    EXPECT_EQ(SlideRegionOf({1366, 768}, {960, 540}), (Size{1364, 768}));
}

TEST(SlideRegion, OfAWideSlide_KeepsTheWidth) {
    EXPECT_EQ(SlideRegionOf({1280, 1024}, {960, 540}), (Size{1280, 720}));
    EXPECT_EQ(SlideRegionOf({1024, 768}, {960, 600}), (Size{1024, 640}));
}

TEST(SlideRegion, OfTheScreensOwnRatio_IsTheScreenRoundedDown) {
    EXPECT_EQ(SlideRegionOf({1920, 1080}, {960, 540}), (Size{1920, 1080}));
    EXPECT_EQ(SlideRegionOf({1366, 683}, {960, 480}), (Size{1364, 680}));
}

TEST(SlideRegion, OfASlideWithoutHeight_Fails) {
    EXPECT_THROW(SlideRegionOf({1920, 1080}, {960, 0}), host::Error);
    EXPECT_THROW(SlideRegionOf({1920, 0}, {960, 540}), host::Error);
}

TEST(SlideRegion, OfTheSession_GoesIntoItsRegion) {
    test::DisplayWorld w;
    w.display.g_ScreenWidth = 1920;
    w.display.g_ScreenHeight = 1080;
    w.display.g_SlideWidthPt = 720;
    w.display.g_SlideHeightPt = 540;
    modRegion::SlideRegion(w.c);
    EXPECT_EQ(w.display.g_RegionWidth, 1440);
    EXPECT_EQ(w.display.g_RegionHeight, 1080);
}

}  // namespace
}  // namespace kestrum
