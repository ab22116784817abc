// The parts of the capture that need neither a display nor a sound server.
#include <gtest/gtest.h>

#include <cmath>

#include "media/StreamDecoder.h"
#include "media/capture/Area.h"
#include "media/capture/AudioEncoder.h"
#include "media/capture/ColourConvert.h"
#include "media/capture/PointerOverlay.h"
#include "media/capture/PositionClock.h"
#include "media/capture/SampleClock.h"
#include "media/capture/VideoEncoder.h"

namespace kestrum::media {
namespace {

constexpr std::int64_t kStart = 5 * kNsPerSecond;

TEST(PositionClockTest, PromisedKeyFrame_GoesBeforeAnyOtherPictureAndKeepsItsPosition) {
    PositionClock clock(1000, kStart);
    EXPECT_EQ(clock.Stamp(kStart + 40 * kNsPerMs), 1040);
    EXPECT_EQ(clock.PromiseKey(kStart + 50 * kNsPerMs), 1050);
    EXPECT_EQ(clock.PromiseKey(kStart + 50 * kNsPerMs), 1051) << "no position is given twice";
    EXPECT_EQ(clock.Stamp(kStart + 60 * kNsPerMs), std::nullopt) << "promises wait";
    EXPECT_EQ(clock.TakePromise(), 1050);
    EXPECT_EQ(clock.TakePromise(), 1051);
    EXPECT_EQ(clock.TakePromise(), std::nullopt);
    EXPECT_EQ(clock.Stamp(kStart + 60 * kNsPerMs), 1060);
}

TEST(PositionClockTest, PictureTakenBeforeTheLastPosition_ComesOneMillisecondBehindIt) {
    PositionClock clock(0, kStart);
    EXPECT_EQ(clock.Stamp(kStart), 1) << "0 is the first picture's";
    EXPECT_EQ(clock.PromiseKey(kStart), 2);
}

constexpr int kRate = 1000;  // a frame is a millisecond

std::vector<float> Block(int frames, float value) {
    return std::vector<float>(static_cast<std::size_t>(frames), value);
}
std::int64_t At(int ms) {
    return kStart + ms * kNsPerMs;
}

TEST(SampleClockTest, SoundBeforeTheStart_IsLeftOut_AndTheRestBeginsExactlyThere) {
    SampleClock clock(kRate, 1);
    clock.Push(At(-50), Block(20, 0.1F));
    EXPECT_EQ(clock.FramesProduced(), 0);
    clock.Start(kStart);
    clock.Push(At(-30), Block(20, 0.2F));
    EXPECT_EQ(clock.FramesProduced(), 0);
    clock.Push(At(-10), Block(20, 0.3F));
    EXPECT_EQ(clock.Output(), Block(10, 0.3F));
}

TEST(SampleClockTest, SoundThatBeginsLate_HasSilenceBeforeIt) {
    SampleClock clock(kRate, 1);
    clock.Start(kStart);
    clock.Push(At(15), Block(20, 0.5F));
    ASSERT_EQ(clock.FramesProduced(), 35);
    EXPECT_EQ(clock.Output()[14], 0.0F);
    EXPECT_EQ(clock.Output()[15], 0.5F);
}

TEST(SampleClockTest, JitterOfTheClock_ChangesNothing) {
    SampleClock clock(kRate, 1);
    clock.Start(kStart);
    for (int i = 0; i < 100; ++i) clock.Push(At(i * 20 + (i % 3) * 4), Block(20, 0.5F));
    EXPECT_EQ(clock.FramesProduced(), 2000);
}

TEST(SampleClockTest, GapThatLasts_BecomesSilence) {
    SampleClock clock(kRate, 1);
    clock.Start(kStart);
    clock.Push(At(0), Block(20, 0.5F));
    for (int i = 0; i < 5; ++i) clock.Push(At(1000 + i * 20), Block(20, 0.5F));
    EXPECT_EQ(clock.FramesProduced(), 1100);
}

TEST(SampleClockTest, OneBlockThatLooksLate_IsNoGap) {
    SampleClock clock(kRate, 1);
    clock.Start(kStart);
    clock.Push(At(0), Block(20, 0.5F));
    clock.Push(At(1020), Block(20, 0.5F));
    clock.Push(At(40), Block(20, 0.5F));
    EXPECT_EQ(clock.FramesProduced(), 60);
}

TEST(SampleClockTest, LostSource_IsSilentAndContinuesWithoutOverlap) {
    SampleClock clock(kRate, 1);
    clock.Start(kStart);
    clock.Push(At(0), Block(20, 0.5F));
    clock.Interrupted();
    clock.FillTo(At(500));
    EXPECT_EQ(clock.FramesProduced(), 500);
    clock.FillTo(At(400));
    EXPECT_EQ(clock.FramesProduced(), 500) << "time does not go back";
    clock.Push(At(490), Block(20, 0.7F));
    EXPECT_EQ(clock.FramesProduced(), 510);
    EXPECT_EQ(clock.Output().back(), 0.7F);
}

/// Plays a card whose samples come `factor` times as fast as they should for `seconds`, with block times that are off
/// by up to `jitterMs`; how far the stream was from the real time at most after the first half minute, in ms.
double MostApart(double factor, int seconds, int jitterMs = 0) {
    constexpr int kLow = 8000, kFrames = 160, kSettling = 30;
    SampleClock clock(kLow, 1);
    clock.Start(kStart);
    const double blockNs = kFrames / (kLow * factor) * kNsPerSecond;
    const int blocks = static_cast<int>(seconds * kNsPerSecond / blockNs);
    const std::vector<float> block = Block(kFrames, 0.5F);
    double most = 0;
    for (int i = 0; i < blocks; ++i) {
        const int off = jitterMs == 0 ? 0 : (i % 1000) * 7919 % (2 * jitterMs + 1) - jitterMs;
        clock.Push(kStart + static_cast<std::int64_t>(i * blockNs) + off * kNsPerMs, block);
        clock.Output().clear();
        const double real = (i + 1) * blockNs / kNsPerMs;
        const double apart = static_cast<double>(clock.FramesProduced()) * 1000 / kLow - real;
        if (real > kSettling * 1000) most = std::max(most, std::abs(apart));
    }
    return most;
}

TEST(SampleClockTest, AfterTwoHours_ACardThatRunsTooFastOrTooSlow_IsWithinTenMilliseconds) {
    EXPECT_LT(MostApart(1.0, 7200), 0.1);
    EXPECT_LT(MostApart(1.0005, 7200), 10);
    EXPECT_LT(MostApart(0.9995, 7200), 10);
    EXPECT_LT(MostApart(1.0002, 7200, 8), 10);
    EXPECT_LT(MostApart(0.9998, 7200, 8), 10);
}

TEST(SampleClockTest, ACardThatIsOffByMoreThanCardsAre_StaysNear) {
    EXPECT_LT(MostApart(1.0009, 600), 15);
    EXPECT_LT(MostApart(0.9991, 600), 15);
}

TEST(SampleClockTest, StreamThatIsDisplaced_ComesBackIntoStep) {
    for (const int displaced : {120, -120}) {
        constexpr int kHigh = 48000, kFrames = 960;
        SampleClock clock(kHigh, 1);
        clock.Start(kStart);
        for (int i = 0; i < 50; ++i) clock.Push(At(i * 20), Block(kFrames, 0.5F));
        for (int i = 50; i < 1500; ++i) clock.Push(At(i * 20 + displaced), Block(kFrames, 0.5F));
        const double error = static_cast<double>(clock.FramesProduced()) / 48 - (1500 * 20 + displaced);
        EXPECT_NEAR(error, 0, 30) << displaced;
    }
}

TEST(AudioEncoderTest, UnitsAreNumberedByTheSamplesTheyHold) {
    AudioEncoder encoder({48000, 1, 64000});
    std::vector<std::int64_t> frames;
    const auto output = [&](std::int64_t frame, std::span<const std::uint8_t> unit) {
        EXPECT_FALSE(unit.empty());
        frames.push_back(frame);
    };
    encoder.Encode(Block(5000, 0.1F), output);
    encoder.Finish(output);
    EXPECT_EQ(frames, (std::vector<std::int64_t>{0, 1024, 2048, 3072, 4096}));
    EXPECT_GE(encoder.AudioSpecificConfig().size(), 2U);
}

/// Two tones, of 1 and of 8.5 kHz: what is left of each after encoding, 0 to 1.
struct Tones {
    double low = 0, high = 0;
};

Tones TonesAfter(const AudioLayout& layout) {
    constexpr double kLow = 1000, kHigh = 8500;
    constexpr int kUnits = 40;
    const auto sine = [&](double hertz, int frame) { return std::sin(2 * M_PI * hertz * frame / layout.rate); };
    std::vector<float> samples;
    for (int i = 0; i < kUnits * AudioEncoder::kFramesPerUnit; ++i) {
        samples.push_back(static_cast<float>(0.2 * (sine(kLow, i) + sine(kHigh, i))));
    }
    AudioEncoder encoder(layout);
    test::StreamDecoder decoder(encoder.AudioSpecificConfig(), AV_CODEC_ID_AAC);
    std::vector<float> decoded;
    const auto output = [&](std::int64_t, std::span<const std::uint8_t> unit) {
        const AVFrame* frame = decoder.Decode(unit);
        ASSERT_NE(frame, nullptr);
        const auto* first = reinterpret_cast<const float*>(frame->data[0]);
        decoded.insert(decoded.end(), first, first + frame->nb_samples);
    };
    encoder.Encode(samples, output);
    encoder.Finish(output);
    const auto strength = [&](double hertz) {
        double real = 0, imaginary = 0;
        const int count = static_cast<int>(decoded.size());
        for (int i = 0; i < count; ++i) {
            real += decoded[static_cast<std::size_t>(i)] * std::cos(2 * M_PI * hertz * i / layout.rate);
            imaginary += decoded[static_cast<std::size_t>(i)] * sine(hertz, i);
        }
        return 2 * std::hypot(real, imaginary) / count / 0.2;
    };
    return {strength(kLow), strength(kHigh)};
}

TEST(AudioEncoderTest, FewBits_AreSpentOnWhatWordsAreToldApartBy) {
    const Tones few = TonesAfter({48000, 1, 32000});
    EXPECT_NEAR(few.low, 1, 0.1);
    EXPECT_LT(few.high, 0.05);
    const Tones more = TonesAfter({48000, 1, 64000});
    EXPECT_NEAR(more.low, 1, 0.1);
    EXPECT_NEAR(more.high, 1, 0.1);
}

TEST(ColourConvertTest, PrimariesAreThoseOfBt709) {
    struct {
        std::uint32_t colour;
        int y, cb, cr;
    } const cases[] = {{0x000000, 16, 128, 128}, {0xFFFFFF, 235, 128, 128}, {0xFF0000, 63, 102, 240},
                       {0x00FF00, 173, 42, 26},  {0x0000FF, 32, 240, 118},  {0x808080, 126, 128, 128}};
    for (const auto& one : cases) {
        BgraPicture from(16, 16);
        from.pixels.assign(from.pixels.size(), one.colour);
        I420Picture to(16, 16);
        ConvertArea(from, to, {0, 0, 16, 16});
        EXPECT_NEAR(to.luma[0], one.y, 1) << std::hex << one.colour;
        EXPECT_NEAR(to.cb[0], one.cb, 1) << std::hex << one.colour;
        EXPECT_NEAR(to.cr[0], one.cr, 1) << std::hex << one.colour;
    }
}

TEST(ColourConvertTest, ChangedBlocks_AreConvertedAndNothingElse) {
    BgraPicture from(40, 36);  // neither side is a multiple of a macroblock
    from.pixels.assign(from.pixels.size(), 0xFFFFFF);
    I420Picture to(40, 36);
    ChangeMap changes(40, 36);
    changes.Mark(Area{39, 35, 1, 1});
    changes.Mark(Area{-5, -5, 7, 7});
    EXPECT_EQ(changes.Count(), 2U);
    ConvertChanged(from, to, changes);
    const auto luma = [&](int x, int y) { return to.luma[static_cast<std::size_t>(y) * to.lumaStride + x]; };
    EXPECT_EQ(luma(0, 0), 235);
    EXPECT_EQ(luma(15, 15), 235);
    EXPECT_EQ(luma(16, 0), 16);
    EXPECT_EQ(luma(39, 35), 235);
    EXPECT_EQ(luma(32, 32), 235);
    EXPECT_EQ(luma(31, 32), 16);
}

TEST(PointerOverlayTest, PointerIsBlendedAndLeavesNoTrace) {
    BgraPicture picture(8, 8);
    picture.pixels.assign(picture.pixels.size(), 0x00204060);
    const auto clean = picture.pixels;
    ChangeMap changes(8, 8);
    PointerOverlay pointer;
    // Half transparent red, one pixel of it beyond the corner.
    pointer.Update({{-1, 0, 2, 1}, {0xFFFFFFFF, 0x80800000}}, changes);
    EXPECT_EQ(changes.Count(), 1U);
    pointer.Paint(picture);
    EXPECT_NEAR(static_cast<int>((picture.pixels[0] >> 16) & 0xFF), 0x80 + 0x10, 1);
    EXPECT_NEAR(static_cast<int>(picture.pixels[0] & 0xFF), 0x30, 1);
    pointer.Remove(picture);
    EXPECT_EQ(picture.pixels, clean);
    changes.Clear();
    pointer.Update({{-1, 0, 2, 1}, {0xFFFFFFFF, 0x80800000}}, changes);
    EXPECT_EQ(changes.Count(), 0U) << "a pointer at rest changes nothing";
}

TEST(AreaTest, FitKeepsProportionsWithEvenCorners) {
    EXPECT_EQ(FitInto({0, 0, 320, 180}, {0, 0, 640, 480}), (Area{0, 60, 640, 360}));
    EXPECT_EQ(FitInto({0, 0, 480, 640}, {0, 0, 640, 480}), (Area{140, 0, 360, 480}));
    EXPECT_EQ(FitInto({0, 0, 640, 480}, {0, 0, 640, 480}), (Area{0, 0, 640, 480}));
    const Area thin = FitInto({0, 0, 10000, 2}, {0, 0, 640, 480});
    EXPECT_EQ(thin.width % 2 + thin.height % 2 + thin.x % 2 + thin.y % 2, 0);
    EXPECT_GE(thin.height, 2);
}

TEST(VideoEncoderTest, EveryPictureComesOutOfItsOwnCall_AndKeyFramesWhenAskedFor) {
    VideoEncoder encoder({64, 48, 10, false});
    I420Picture picture(64, 48);
    ChangeMap changes(64, 48);
    changes.MarkAll();
    EXPECT_TRUE(encoder.Encode(picture, changes, true).isKey);
    changes.Clear();
    const auto still = encoder.Encode(picture, changes, false);
    EXPECT_FALSE(still.isKey);
    EXPECT_LT(still.sample.size(), 100U);
    EXPECT_TRUE(encoder.Encode(picture, changes, true).isKey);
    EXPECT_EQ(encoder.AvcC()[0], 1);
}

TEST(VideoEncoderTest, ParameterSets_DoNotDependOnTheFrameRate) {
    for (const int rate : {4, 10, 20, 30}) {
        EXPECT_EQ(VideoEncoder({1920, 1080, rate, false}).AvcC(), VideoEncoder({1920, 1080, 10, false}).AvcC()) << rate;
    }
}

}  // namespace
}  // namespace kestrum::media
