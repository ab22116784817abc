// The scale of the sound's level.
#include "media/capture/LevelMeter.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestrum::media {
namespace {

constexpr int kRate = 48000, kChannels = 1;
constexpr std::size_t kWindow = kRate / LevelMeter::kLevelsPerSecond;

std::vector<float> Loud(float peak) {
    std::vector<float> samples(kWindow, 0.0F);
    samples[kWindow / 2] = peak;
    return samples;
}

TEST(LevelMeter, FullScale_IsAHundred_AndFortyDecibelsBelow_IsNothing) {
    EXPECT_EQ(LevelMeter::LevelOf(1.0F), 100);
    EXPECT_EQ(LevelMeter::LevelOf(0.1F), 50);
    EXPECT_EQ(LevelMeter::LevelOf(0.01F), 0);
    EXPECT_EQ(LevelMeter::LevelOf(0.0F), 0);
    EXPECT_EQ(LevelMeter::LevelOf(2.0F), 100) << "a source that overshoots";
}

TEST(LevelMeter, SilenceOfTheLowVolumeTest_EndsThirtyEightDecibelsBelow) {
    EXPECT_EQ(LevelMeter::LevelOf(0.0126F), 5);
    EXPECT_EQ(LevelMeter::LevelOf(0.0132F), 6);
}

TEST(LevelMeter, Level_IsTheLoudestSampleOfATwentiethOfASecond_OfEitherSign) {
    LevelMeter meter(kRate, kChannels);
    EXPECT_FALSE(meter.Push(std::vector<float>(kWindow - 1, -0.1F)));
    EXPECT_EQ(meter.Push(std::vector<float>(1, 0.0F)), 50);
}

TEST(LevelMeter, Peak_FallsOffSlowly_ToSilenceWithinASecond) {
    LevelMeter meter(kRate, kChannels);
    EXPECT_EQ(meter.Push(Loud(1)), 100);
    EXPECT_EQ(meter.Push(Loud(0)), 92) << "a look every 200 ms still finds it";
    int level = 92;
    for (int i = 2; i < LevelMeter::kLevelsPerSecond; ++i) level = *meter.Push(Loud(0));
    EXPECT_EQ(level, 0);
}

}  // namespace
}  // namespace kestrum::media
