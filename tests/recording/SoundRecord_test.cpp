// The verdict on the sound of a recording.
#include "recording/SoundRecord.h"

#include <gtest/gtest.h>

namespace kestrum::recording {
namespace {

constexpr std::int32_t kLooksPerSecond = 1000 / SoundRecord::kLookMs;

struct SoundRecordTest : ::testing::Test {
    void Hear(std::int32_t level, std::int32_t seconds) {
        for (std::int32_t i = 0; i < seconds * kLooksPerSecond; ++i) sound.Add(level);
    }
    /// Speech: mostly this loud, with short pauses.
    void Speak(std::int32_t level, std::int32_t seconds) {
        for (std::int32_t i = 0; i < seconds; ++i) {
            for (std::int32_t look = 0; look < kLooksPerSecond; ++look) sound.Add(look == 0 ? 0 : level);
        }
    }
    SoundRecord sound;
};

TEST_F(SoundRecordTest, HardlyAnything_IsNotJudged) {
    Hear(80, 2);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Unknown);
    Hear(80, 1);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Good);
}

TEST_F(SoundRecordTest, NothingAboveTheNoise_IsSilent) {
    Hear(5, 30);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Silent);
    Hear(6, 1);
    EXPECT_NE(sound.Verdict(), SoundVerdict::Silent);
}

TEST_F(SoundRecordTest, TwoMinutesOfSilence_AreTold_WithTheirPlace) {
    Speak(80, 600);
    Hear(0, 119);
    Speak(80, 600);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Good);
    Hear(3, 300);
    Speak(80, 60);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::LongSilence);
    // The pause at the beginning of the next sentence belongs to it.
    EXPECT_EQ(sound.LongestSilenceMs(), 300'200);
    EXPECT_EQ(sound.LongestSilenceAtMs(), (600 + 119 + 600) * 1000);
}

TEST_F(SoundRecordTest, AgainAndAgainAtTheTop_IsTooLoud_OnceIsNot) {
    Speak(80, 600);
    Hear(100, 1);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Good) << "a door, a cough";
    Hear(100, 12);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Clipped);
}

TEST_F(SoundRecordTest, NeverAsLoudAsSpeech_IsQuiet) {
    Speak(30, 600);
    Hear(70, 5);  // a cough
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Quiet);
    Speak(45, 600);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Good);
}

TEST_F(SoundRecordTest, LevelsOutOfRange_AreTakenForTheNearest) {
    Hear(1000, 4);
    EXPECT_EQ(sound.Verdict(), SoundVerdict::Clipped);
    SoundRecord other;
    for (int i = 0; i < 20; ++i) other.Add(-7);
    EXPECT_EQ(other.Verdict(), SoundVerdict::Silent);
}

}  // namespace
}  // namespace kestrum::recording
