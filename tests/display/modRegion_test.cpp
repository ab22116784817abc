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

TEST(SlideRegion, OfEveryUsualSlideOnEveryUsualScreen_FitsAndIsAligned) {
    struct Case {
        Size screen, slide, region;
    };
    const Size full{1920, 1080}, wide{960, 540}, narrow{720, 540}, tenth{720, 450}, a4{780, 540}, film{810, 540};
    const Size portrait{540, 720}, banner{576, 72};
    const Case cases[] = {
        {full, wide, {1920, 1080}},
        {full, narrow, {1440, 1080}},
        {full, tenth, {1728, 1080}},
        {full, portrait, {808, 1080}},
        {full, banner, {1920, 240}},
        {{1280, 800}, wide, {1280, 720}},
        {{1280, 800}, tenth, {1280, 800}},
        {{1280, 800}, narrow, {1064, 800}},
        {{1366, 768}, narrow, {1024, 768}},
        {{1366, 768}, film, {1152, 768}},
        {{1280, 720}, a4, {1040, 720}},
        {{1024, 768}, banner, {1024, 128}},
        {{1280, 1024}, wide, {1280, 720}},
        {{1080, 1920}, wide, {1080, 608}},
        {{1080, 1920}, portrait, {1080, 1440}},
        {{3440, 1440}, wide, {2560, 1440}},
        {{1365, 1023}, narrow, {1360, 1020}},
        {{1600, 900}, wide, {1600, 900}},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(SlideRegionOf(one.screen, one.slide), one.region)
            << one.slide.width << "x" << one.slide.height << " on " << one.screen.width << "x" << one.screen.height;
    }
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
