// Pictures of our own writer, decoded by an independent decoder: bit for bit what the writer believes, and like the
// source.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <random>

#include "StreamDecoder.h"
#include "media/capture/VideoEncoder.h"
#include "media/capture/h264/Cavlc.h"
#include "media/capture/h264/CavlcTables.h"
#include "media/capture/h264/SmallPictureWriter.h"
#include "media/capture/h264/Transform.h"

namespace kestrum::media {
namespace {

using h264::Frame;
using test::StreamDecoder;

double MeanSquare(const AVFrame& shown, const I420Picture& source, const Area& area) {
    double sum = 0;
    for (int y = area.y; y < area.Bottom(); ++y) {
        for (int x = area.x; x < area.Right(); ++x) {
            const double off = shown.data[0][y * shown.linesize[0] + x] -
                               source.luma[static_cast<std::size_t>(y * source.lumaStride + x)];
            sum += off * off;
        }
    }
    return sum / (area.width * area.height);
}

double MeanSquare(const AVFrame& shown, const I420Picture& source) {
    return MeanSquare(shown, source, {0, 0, source.width, source.height});
}

/// A slide: plain ground, lines of noise for text.
I420Picture Slide(int width, int height, unsigned seed) {
    I420Picture picture(width, height);
    std::mt19937 random(seed);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool isText = y / 12 % 3 == 1 && x > width / 8 && x < width * 3 / 4;
            picture.luma[static_cast<std::size_t>(y * picture.lumaStride + x)] =
                static_cast<std::uint8_t>(isText ? 40 + random() % 160 : 225 - y / 16);
        }
    }
    return picture;
}

/// A picture of a film: waves that wander, with grain.
I420Picture FilmOf(int width, int height, unsigned number) {
    I420Picture picture(width, height);
    std::mt19937 random(number);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double wave = std::sin((x + 4.0 * number) / 23) * std::cos((y - 2.0 * number) / 31);
            picture.luma[static_cast<std::size_t>(y * picture.lumaStride + x)] =
                static_cast<std::uint8_t>(124 + 70 * wave + random() % 9);
        }
    }
    return picture;
}

/// A disc in a strong colour.
void DrawDisc(I420Picture& picture, ChangeMap& changes, int centreX, int centreY, int radius, std::uint8_t luma) {
    for (int y = std::max(0, centreY - radius); y < std::min(picture.height, centreY + radius); ++y) {
        for (int x = std::max(0, centreX - radius); x < std::min(picture.width, centreX + radius); ++x) {
            if ((x - centreX) * (x - centreX) + (y - centreY) * (y - centreY) >= radius * radius) continue;
            picture.luma[static_cast<std::size_t>(y * picture.lumaStride + x)] =
                static_cast<std::uint8_t>(luma + (x - centreX) % 7);
            const auto chroma = static_cast<std::size_t>(y / 2 * picture.chromaStride + x / 2);
            picture.cb[chroma] = 90;
            picture.cr[chroma] = 200;
        }
    }
    changes.Mark(Area{centreX - radius, centreY - radius, 2 * radius, 2 * radius});
}

void Expect_DecodesTo(const AVFrame& shown, const Frame& believed, int width, int height) {
    for (int y = 0; y < height; ++y) {
        ASSERT_EQ(
            std::memcmp(shown.data[0] + y * shown.linesize[0], believed.luma.At(0, y), static_cast<std::size_t>(width)),
            0)
            << "luma line " << y;
    }
    for (int plane = 0; plane < 2; ++plane) {
        for (int y = 0; y < height / 2; ++y) {
            ASSERT_EQ(std::memcmp(shown.data[plane + 1] + y * shown.linesize[plane + 1],
                                  believed.chroma[static_cast<std::size_t>(plane)].At(0, y),
                                  static_cast<std::size_t>(width / 2)),
                      0)
                << "chroma " << plane << " line " << y;
        }
    }
}

/// The sequence set of an avcC.
h264::SequenceSet SequenceOf(const Bytes& avcC) {
    const std::size_t length = static_cast<std::size_t>(avcC[6] * 256 + avcC[7]);
    const auto set = h264::ReadSequenceSet(std::span(avcC).subspan(8, length));
    EXPECT_TRUE(set.has_value());
    return set.value_or(h264::SequenceSet{});
}

/// A writer that goes on from a key frame, beside a decoder that got that key frame too.
class SmallPictureTest : public ::testing::Test {
  protected:
    SmallPictureTest() { Start(); }

    void Start() {
        ChangeMap all(kWidth, kHeight);
        all.MarkAll();
        const AVFrame* shown = m_decoder.Decode(m_encoder.Encode(picture, all, true).sample);
        ASSERT_NE(shown, nullptr);
        const int columns = (kWidth + 15) / 16, rows = (kHeight + 15) / 16;
        // A decoder gives the visible part; what lies beyond it may be anything that both sides agree on, so that no
        // vector must lead there: here the size is one of whole macroblocks.
        ASSERT_EQ(columns * 16, kWidth);
        ASSERT_EQ(rows * 16, kHeight);
        Bytes pairs;
        for (int y = 0; y < kHeight / 2; ++y) {
            for (int x = 0; x < kWidth / 2; ++x) {
                pairs.push_back(shown->data[1][y * shown->linesize[1] + x]);
                pairs.push_back(shown->data[2][y * shown->linesize[2] + x]);
            }
        }
        writer.TakeOver({shown->data[0], shown->linesize[0], pairs.data(), kWidth}, 1);
    }

    /// Writes the picture and looks at what the decoder makes of it; the number of bytes.
    std::size_t Write(const ChangeMap& changes) {
        const auto sample = writer.Write(picture, changes);
        const AVFrame* shown = m_decoder.Decode(sample);
        EXPECT_NE(shown, nullptr) << "the picture cannot be decoded";
        if (!shown) return 0;
        Expect_DecodesTo(*shown, writer.Decoded(), kWidth, kHeight);
        m_meanSquare = MeanSquare(*shown, picture, m_area);
        return sample.size();
    }

    static constexpr int kWidth = 320;
    static constexpr int kHeight = 192;
    I420Picture picture = Slide(kWidth, kHeight, 1);
    Area m_area{0, 0, kWidth, kHeight};  ///< that m_meanSquare is told of
    double m_meanSquare = 0;

  private:
    VideoEncoder m_encoder{{kWidth, kHeight, 30, false}};
    StreamDecoder m_decoder{m_encoder.AvcC()};

  protected:
    h264::SmallPictureWriter writer{SequenceOf(m_encoder.AvcC()), kWidth, kHeight};
};

TEST_F(SmallPictureTest, NothingChanged_IsAFewBytes_AndTheSamePicture) {
    const Frame before = writer.Decoded();
    EXPECT_LE(Write(ChangeMap(kWidth, kHeight)), 16U);
    EXPECT_EQ(writer.Decoded().luma.samples, before.luma.samples);
}

TEST_F(SmallPictureTest, MovingDisc_IsDecodedBitForBit_AndLooksLikeTheSource) {
    const I420Picture slide = picture;
    for (int step = 0; step < 60; ++step) {
        ChangeMap changes(kWidth, kHeight);
        const int before = 40 + 4 * (step - 1), now = 40 + 4 * step;
        picture = slide;
        changes.Mark(Area{before - 30, 50, 60, 60});
        DrawDisc(picture, changes, now, 80 + step % 5, 30, 90);
        EXPECT_LT(Write(changes), 4000U) << step;
        EXPECT_LT(m_meanSquare, 12) << step;
    }
}

TEST_F(SmallPictureTest, NoiseOfEveryStrength_IsDecodedBitForBit) {
    std::mt19937 random(7);
    for (int strength = 1; strength <= 256; strength = strength * 5 / 4 + 1) {
        for (int round = 0; round < 3; ++round) {
            ChangeMap changes(kWidth, kHeight);
            for (int i = 0; i < 60; ++i) {
                const int column = static_cast<int>(random() % 20), row = static_cast<int>(random() % 12);
                changes.Mark(column, row);
                for (int at = 0; at < 256; ++at) {
                    const int x = column * 16 + at % 16, y = row * 16 + at / 16;
                    const auto noise = static_cast<int>(random() % static_cast<unsigned>(strength));
                    auto& luma = picture.luma[static_cast<std::size_t>(y * picture.lumaStride + x)];
                    luma = static_cast<std::uint8_t>(std::clamp(luma + noise - strength / 2, 0, 255));
                    if (random() % 3 != 0) continue;
                    const auto chroma = static_cast<std::size_t>(y / 2 * picture.chromaStride + x / 2);
                    picture.cb[chroma] = static_cast<std::uint8_t>(128 + noise / 2);
                    picture.cr[chroma] = static_cast<std::uint8_t>(128 - noise / 2);
                }
            }
            Write(changes);
            ASSERT_FALSE(HasFailure()) << strength;
        }
        Write(ChangeMap(kWidth, kHeight));  // made fine
        ASSERT_FALSE(HasFailure()) << strength;
    }
}

TEST_F(SmallPictureTest, BlackAndWhiteAtHardEdges_HaveLevelsOfEverySize) {
    for (int pattern = 1; pattern < 64; ++pattern) {
        ChangeMap changes(kWidth, kHeight);
        for (int y = 0; y < 96; ++y) {
            for (int x = 0; x < 160; ++x) {
                const bool isWhite = ((x * (pattern % 8) + y * (pattern / 8)) / 8) % 2 != 0;
                picture.luma[static_cast<std::size_t>(y * picture.lumaStride + x)] = isWhite ? 255 : 0;
            }
        }
        changes.Mark(Area{0, 0, 160, 96});
        Write(changes);
        Write(ChangeMap(kWidth, kHeight));
        ASSERT_FALSE(HasFailure()) << pattern;
    }
}

TEST_F(SmallPictureTest, WhatMovedAndRests_IsMadeFineOnce) {
    ChangeMap changes(kWidth, kHeight);
    const I420Picture other = Slide(kWidth, kHeight, 2);
    for (int y = 0; y < 96; ++y) {
        const auto line = static_cast<std::ptrdiff_t>(y) * other.lumaStride + 64;
        std::copy_n(other.luma.begin() + line, 128, picture.luma.begin() + line);
    }
    m_area = {64, 0, 128, 96};
    changes.Mark(m_area);
    Write(changes);
    const double coarse = m_meanSquare;
    EXPECT_GT(Write(ChangeMap(kWidth, kHeight)), 100U);
    EXPECT_LT(m_meanSquare, coarse / 2);
    EXPECT_LE(Write(ChangeMap(kWidth, kHeight)), 16U);
}

TEST_F(SmallPictureTest, PastMorePicturesThanTheNumbersInTheirHeadsHold_AllAreDecoded) {
    const I420Picture slide = picture;
    for (int step = 0; step < 200; ++step) {
        ChangeMap changes(kWidth, kHeight);
        picture = slide;
        changes.Mark(Area{100, 60, 64, 64});
        DrawDisc(picture, changes, 128, 92, 6 + step % 20, 60);
        Write(changes);
        ASSERT_FALSE(HasFailure()) << step;
    }
}

/// Sends pictures through the encoder and looks at each as a player shows it.
class MixedPicturesTest : public ::testing::Test {
  protected:
    static constexpr int kWidth = 640, kHeight = 360;  // not whole macroblocks: a line of them is cut

    const EncodedPicture& Send(const ChangeMap& changes, bool key = false) {
        last = encoder.Encode(picture, changes, key);
        const AVFrame* shown = decoder.Decode(last.sample);
        EXPECT_NE(shown, nullptr);
        meanSquare = shown ? MeanSquare(*shown, picture) : 1e9;
        return last;
    }
    /// Nothing changes for so many pictures that our writer takes over.
    void Rest() {
        for (int step = 0; step < 40; ++step) Send(ChangeMap(kWidth, kHeight));
    }
    static I420Picture FilmPicture(unsigned number) { return FilmOf(kWidth, kHeight, number); }
    void Play(unsigned first, unsigned end) {
        for (unsigned number = first; number < end; ++number) {
            picture = FilmPicture(number);
            EXPECT_FALSE(Send(All()).isKey);
        }
    }
    ChangeMap All() const {
        ChangeMap changes(kWidth, kHeight);
        changes.MarkAll();
        return changes;
    }

    VideoEncoder encoder{{kWidth, kHeight, 10, false}};
    StreamDecoder decoder{encoder.AvcC()};
    I420Picture picture = Slide(kWidth, kHeight, 3);
    EncodedPicture last;
    double meanSquare = 0;
};

TEST_F(MixedPicturesTest, SmallChangesAfterAKeyFrame_CostLittle_AndLookLikeTheSource) {
    const std::size_t whole = Send(All(), true).sample.size();
    Rest();
    const I420Picture slide = picture;
    for (int step = 0; step < 40; ++step) {
        ChangeMap changes(kWidth, kHeight);
        picture = slide;
        changes.Mark(Area{step * 10 - 40, 310, 60, 50});
        DrawDisc(picture, changes, step * 10 + 10, 340, 20, 120);  // over the cut line of macroblocks
        EXPECT_FALSE(Send(changes).isKey);
        EXPECT_LT(last.sample.size(), whole / 4) << step;
        EXPECT_LT(meanSquare, 15) << step;
    }
}

TEST_F(MixedPicturesTest, BigChangeAfterSmallOnes_IsAKeyFrame_AndAnotherBigOneIsNot) {
    Send(All(), true);
    Rest();
    ChangeMap changes(kWidth, kHeight);
    DrawDisc(picture, changes, 100, 100, 20, 120);
    EXPECT_FALSE(Send(changes).isKey);
    picture = Slide(kWidth, kHeight, 4);
    EXPECT_TRUE(Send(All()).isKey);
    EXPECT_LT(meanSquare, 30);
    picture = Slide(kWidth, kHeight, 5);
    EXPECT_FALSE(Send(All()).isKey);
    EXPECT_LT(meanSquare, 40);
}

TEST_F(MixedPicturesTest, AnAnimationRightAfterAKeyFrame_MakesNoOther) {
    Send(All(), true);
    Send(ChangeMap(kWidth, kHeight));
    picture = Slide(kWidth, kHeight, 9);
    EXPECT_FALSE(Send(All()).isKey);
}

TEST_F(MixedPicturesTest, AFilmIsCoarserAfterASecond_AndWhatItLeavesIsFineOnceItStands) {
    picture = FilmPicture(0);
    Send(All(), true);
    Play(1, 9);
    const double fine = meanSquare;
    const std::size_t fineBytes = last.sample.size();
    Play(10, 30);
    EXPECT_GT(meanSquare, fine * 1.05);
    EXPECT_LT(meanSquare, fine * 1.5);
    EXPECT_LT(last.sample.size(), fineBytes / 2);
    const double coarse = meanSquare;
    EXPECT_FALSE(Send(ChangeMap(kWidth, kHeight)).isKey);
    EXPECT_LT(meanSquare, (fine + coarse) / 2);
    Send(ChangeMap(kWidth, kHeight));
    EXPECT_LT(last.sample.size(), 200U) << "once is enough";
}

TEST_F(MixedPicturesTest, AKeyFrameAmidAFilm_IsAsFineAsAnyOther) {
    picture = FilmPicture(30);
    Send(All(), true);
    const double fine = meanSquare;
    Play(1, 29);
    picture = FilmPicture(30);
    EXPECT_TRUE(Send(All(), true).isKey);
    EXPECT_LT(meanSquare, fine * 1.02);
}

TEST_F(MixedPicturesTest, AmongBigChanges_SmallOnesMakeNoKeyFramesNecessary) {
    Send(All(), true);
    Rest();
    int keys = 0;
    for (int step = 0; step < 100; ++step) {
        ChangeMap changes(kWidth, kHeight);
        if (step % 7 == 3) {
            picture = Slide(kWidth, kHeight, static_cast<unsigned>(step));
            changes.MarkAll();
        } else {
            DrawDisc(picture, changes, 100 + step * 2, 100, 20, 120);
        }
        keys += Send(changes).isKey;
        EXPECT_LT(meanSquare, 40) << step;
    }
    EXPECT_EQ(keys, 2) << "after the second it is clear that more will come";
}

TEST_F(MixedPicturesTest, ABigChangeNowAndThen_LeavesTheSmallOnesToOurWriter) {
    Send(All(), true);
    Rest();
    picture = Slide(kWidth, kHeight, 8);
    EXPECT_TRUE(Send(All()).isKey);
    EXPECT_LE(Send(ChangeMap(kWidth, kHeight)).sample.size(), 16U) << "x264 needs more for a picture like the last";
}

TEST_F(MixedPicturesTest, AfterAWhileWithoutBigChanges_OurWriterTakesOverAgain) {
    Send(All(), true);
    picture = Slide(kWidth, kHeight, 6);
    Send(All());
    Send(All());
    const I420Picture slide = picture;
    std::size_t least = 1000;
    for (int step = 0; step < 60; ++step) {
        picture = slide;
        ChangeMap changes(kWidth, kHeight);
        changes.Mark(Area{200, 80, 60, 60});
        DrawDisc(picture, changes, 230 + step % 4, 110, 20, 120);
        Send(changes);
        EXPECT_LT(meanSquare, 30) << step;
        least = std::min(least, last.sample.size());
    }
    EXPECT_LE(Send(ChangeMap(kWidth, kHeight)).sample.size(), 4000U);
    EXPECT_LE(Send(ChangeMap(kWidth, kHeight)).sample.size(), 16U) << "x264 needs more for a picture like the last";
    EXPECT_LT(least, 1000U);
}

TEST_F(MixedPicturesTest, KeyFramesThatCarryTheirHeaders_NeedNoOthers) {
    VideoEncoder carrying({kWidth, kHeight, 10, true});
    StreamDecoder other(VideoEncoder({128, 96, 10, false}).AvcC());
    ASSERT_NE(other.Decode(carrying.Encode(picture, All(), true).sample), nullptr);
    ChangeMap changes(kWidth, kHeight);
    for (int step = 0; step < 40; ++step)
        ASSERT_NE(other.Decode(carrying.Encode(picture, changes, false).sample), nullptr);
    DrawDisc(picture, changes, 100, 100, 20, 120);
    const AVFrame* shown = other.Decode(carrying.Encode(picture, changes, false).sample);
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->width, kWidth);
    EXPECT_LT(MeanSquare(*shown, picture), 15);
}

// --- the parts ---------------------------------------------------------------------------------------------------

template <class Table>
void Expect_NoCodeBeginsAnother(const Table& codes) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
        for (std::size_t j = 0; j < codes.size(); ++j) {
            const h264::Code one = codes[i], other = codes[j];
            if (i == j || one.length == 0 || other.length < one.length) continue;
            EXPECT_NE(other.bits >> (other.length - one.length), one.bits) << i << ' ' << j;
        }
    }
}

TEST(CavlcTest, CodesAreTold_Apart) {
    for (const auto& table : h264::kCoefficientTokens) {
        std::vector<h264::Code> codes;
        for (const auto& row : table) codes.insert(codes.end(), row.begin(), row.end());
        Expect_NoCodeBeginsAnother(codes);
    }
    for (const auto& row : h264::kTotalZeros) Expect_NoCodeBeginsAnother(row);
    for (const auto& row : h264::kChromaDcTotalZeros) Expect_NoCodeBeginsAnother(row);
    for (const auto& row : h264::kRunsBefore) Expect_NoCodeBeginsAnother(row);
}

TEST(CavlcTest, ABlockWithoutLevels_IsOneToken) {
    h264::BitWriter bits;
    EXPECT_EQ(h264::WriteLevels(bits, h264::Levels{}, 0), 0);
    bits.Finish();
    ASSERT_EQ(bits.Bytes().size(), 1U);
    EXPECT_EQ(bits.Bytes()[0], 0b11000000);
}

TEST(TransformTest, FineLevels_BringTheDifferencesBack) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        h264::Block differences;
        for (auto& one : differences) one = static_cast<std::int32_t>(random() % 511) - 255;
        h264::Block coefficients = differences;
        h264::ForwardTransform(coefficients);
        const h264::Quantiser quantiser(12);
        h264::Levels levels;
        EXPECT_TRUE(quantiser.Quantise(coefficients, h264::Rounding::kIntra, 0, levels));
        h264::Block back = quantiser.Scale(levels, 0);
        h264::InverseTransform(back);
        for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(back[i], differences[i], 4) << round;
    }
}

TEST(SequenceSetTest, WhatIsCutOffOrOfAnotherKind_IsRefused) {
    const Bytes avcC = VideoEncoder({64, 48, 10, false}).AvcC();
    const std::size_t length = static_cast<std::size_t>(avcC[6] * 256 + avcC[7]);
    const Bytes set(avcC.begin() + 8, avcC.begin() + 8 + static_cast<std::ptrdiff_t>(length));
    EXPECT_TRUE(h264::ReadSequenceSet(set));
    for (std::size_t size = 0; size < 8; ++size)
        EXPECT_FALSE(h264::ReadSequenceSet(std::span(set).first(size))) << size;
    Bytes other = set;
    other[0] = 0x68;
    EXPECT_FALSE(h264::ReadSequenceSet(other));
}

}  // namespace
}  // namespace kestrum::media
