// The small parts of the conversion: the command line, the wish to stop, the plan of key frames, the photo.
#include <unistd.h>

#include <array>

#include "ConvertFixture.h"
#include "media/convert/ConvertArguments.h"
#include "media/convert/DrawFit.h"
#include "media/convert/KeyFramePlan.h"
#include "media/convert/StopRequest.h"
#include "media/package/Error.h"

namespace kestrum::media {
namespace {

TEST(ConvertArguments, TwoFilesAreEnough) {
    const auto request = ParseConvertMp4({"a b.ktr", "out.mp4"});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->package, "a b.ktr");
    EXPECT_EQ(request->output, "out.mp4");
    EXPECT_EQ(request->width, 0);
    EXPECT_EQ(request->sizeLimit, 0);
    EXPECT_FALSE(request->entriesGiven);
}

TEST(ConvertArguments, EveryOptionIsRead) {
    const auto request = ParseConvertMp4({"--size", "640x480", "a", "--bitrate", "800", "b", "--audio-bitrate", "64",
                                          "--limit", "1932735283", "--camera", "160x120,20,480"});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->width, 640);
    EXPECT_EQ(request->height, 480);
    EXPECT_EQ(request->videoKbps, 800);
    EXPECT_EQ(request->audioKbps, 64);
    EXPECT_EQ(request->sizeLimit, 1932735283);
    EXPECT_EQ(request->camera.width, 160);
    EXPECT_EQ(request->camera.height, 120);
    EXPECT_EQ(request->camera.top, 20);
    EXPECT_EQ(request->camera.left, 480);
}

TEST(ConvertArguments, WhatIsNotOursIsRefused) {
    EXPECT_FALSE(ParseConvertMp4({"a"}));
    EXPECT_FALSE(ParseConvertMp4({"a", "b", "c"}));
    EXPECT_FALSE(ParseConvertMp4({"a", "b", "--size", "640"}));
    EXPECT_FALSE(ParseConvertMp4({"a", "b", "--size", "640x480x"}));
    EXPECT_FALSE(ParseConvertMp4({"a", "b", "--bitrate", "-1"}));
    EXPECT_FALSE(ParseConvertMp4({"a", "b", "--limit"}));
    EXPECT_FALSE(ParseConvertMp4({"a", "b", "--speed", "2"}));
}

TEST_F(ConvertTest, ConvertArguments_TheIndexFileGivesEntriesInOrderWithoutLinks) {
    real::WriteText(File("index"), "5000\tdate\tTwo\\ttabs\t\n-1\tdate\tA link\thttp://x\n0\tdate\tOne\t\n");
    const auto request = ParseConvertMp4({"a", "b", "--index", File("index")});
    ASSERT_TRUE(request);
    EXPECT_TRUE(request->entriesGiven);
    ASSERT_EQ(request->entries.size(), 2u);
    EXPECT_EQ(request->entries[0].title, "One");
    EXPECT_EQ(request->entries[1].pos, 5000);
    EXPECT_EQ(request->entries[1].title, "Two\ttabs");
}

TEST_F(ConvertTest, ConvertArguments_AMissingIndexFileIsAFailure) {
    EXPECT_THROW(ParseConvertMp4({"a", "b", "--index", File("none")}), Error);
}

class StopRequestTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(pipe(m_ends.data()), 0); }
    void TearDown() override {
        close(m_ends[0]);
        if (m_ends[1] >= 0) close(m_ends[1]);
    }
    void Send(const std::string& text) {
        ASSERT_EQ(write(m_ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    std::array<int, 2> m_ends = {-1, -1};
};

TEST_F(StopRequestTest, NothingSaid_GoesOn) {
    StopRequest stop(m_ends[0]);
    EXPECT_FALSE(stop.Requested());
}

TEST_F(StopRequestTest, TheLineStop_IsARequestOnceItIsWhole) {
    StopRequest stop(m_ends[0]);
    Send("st");
    EXPECT_FALSE(stop.Requested());
    Send("op\n");
    EXPECT_TRUE(stop.Requested());
    EXPECT_TRUE(stop.Requested());
}

TEST_F(StopRequestTest, AnotherLine_IsNone) {
    StopRequest stop(m_ends[0]);
    Send("hello\n");
    EXPECT_FALSE(stop.Requested());
}

TEST_F(StopRequestTest, TheEndOfTheParent_IsARequest) {
    StopRequest stop(m_ends[0]);
    close(m_ends[1]);
    m_ends[1] = -1;
    EXPECT_TRUE(stop.Requested());
}

TEST(StopRequest, AnInputThatNobodyHolds_IsNotWatched) {
    real::TempFolder folder;
    real::WriteText(folder / "input", "stop\n");
    std::FILE* file = std::fopen((folder / "input").c_str(), "r");
    StopRequest stop(fileno(file));
    EXPECT_FALSE(stop.Requested());
    std::fclose(file);
}

TEST(KeyFramePlan, EachEntryIsTakenOnce) {
    KeyFramePlan plan({{0, ""}, {500, ""}, {500, ""}, {900, ""}}, 2000);
    EXPECT_TRUE(plan.TakeAt(0));
    EXPECT_EQ(plan.TakeBefore(900), std::vector<std::int64_t>{500});
    EXPECT_TRUE(plan.TakeBefore(900).empty());
    EXPECT_TRUE(plan.TakeAt(900));
    EXPECT_FALSE(plan.TakeAt(900));
}

TEST(KeyFramePlan, EntriesWithoutAPictureAreLeftOut) {
    KeyFramePlan plan({{-1, ""}, {2000, ""}, {2001, ""}}, 2000);
    EXPECT_TRUE(plan.TakeBefore(10000).empty());
}

class DrawFitTest : public testing::Test {
  protected:
    std::string Make(const std::string& name, const std::string& colour, const std::string& size) const {
        const std::string path = m_folder / name;
        EXPECT_EQ(real::Run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=" + colour + ":size=" + size,
                             "-frames:v", "1", path})
                      .code,
                  0);
        return path;
    }

    /// The picture as raw RGBA.
    static std::string Pixels(const std::string& path) {
        return real::Run({"ffmpeg", "-v", "error", "-i", path, "-f", "rawvideo", "-pix_fmt", "rgba", "-"}).output;
    }

    static std::array<int, 4> PixelAt(const std::string& pixels, int width, int x, int y) {
        const auto* at = reinterpret_cast<const unsigned char*>(pixels.data()) + 4 * (y * width + x);
        return {at[0], at[1], at[2], at[3]};
    }

    real::TempFolder m_folder;
};

TEST_F(DrawFitTest, TheSourceIsScaledIntoTheMiddleAndTheRestIsTransparent) {
    const auto target = Make("author.png", "blue", "120x120");
    DrawFit(target, Make("photo.gif", "red", "160x80"));
    const auto pixels = Pixels(target);
    ASSERT_EQ(pixels.size(), 120u * 120u * 4u) << "the target keeps its size";
    EXPECT_EQ(PixelAt(pixels, 120, 60, 10)[3], 0);
    EXPECT_EQ(PixelAt(pixels, 120, 60, 110)[3], 0);
    const auto middle = PixelAt(pixels, 120, 60, 60);
    EXPECT_GT(middle[0], 240);
    EXPECT_LT(middle[2], 16);
    EXPECT_EQ(middle[3], 255);
    EXPECT_EQ(PixelAt(pixels, 120, 2, 60)[3], 255) << "the longer side fills the width";
}

TEST_F(DrawFitTest, ASmallSourceIsEnlarged) {
    const auto target = Make("author.png", "blue", "120x120");
    DrawFit(target, Make("photo.png", "red", "12x12"));
    EXPECT_GT(PixelAt(Pixels(target), 120, 5, 5)[0], 240);
}

TEST_F(DrawFitTest, AJpegTargetHasAWhiteMargin) {
    const auto target = Make("author.jpg", "blue", "120x120");
    DrawFit(target, Make("photo.png", "red", "60x120"));
    const auto pixels = Pixels(target);
    EXPECT_GT(PixelAt(pixels, 120, 4, 60)[2], 240);
    EXPECT_GT(PixelAt(pixels, 120, 60, 60)[0], 230);
    EXPECT_LT(PixelAt(pixels, 120, 60, 60)[2], 30);
}

TEST_F(DrawFitTest, AMissingSource_LeavesTheTargetAsItWas) {
    const auto target = Make("author.png", "blue", "120x120");
    const auto before = real::ReadText(target);
    EXPECT_THROW(DrawFit(target, m_folder / "none.gif"), Error);
    EXPECT_EQ(real::ReadText(target), before);
}

TEST_F(DrawFitTest, ADamagedSource_LeavesTheTargetAsItWas) {
    const auto target = Make("author.png", "blue", "120x120");
    const auto before = real::ReadText(target);
    real::WriteText(m_folder / "photo.gif", "GIF89a and then nothing");
    EXPECT_THROW(DrawFit(target, m_folder / "photo.gif"), Error);
    EXPECT_EQ(real::ReadText(target), before);
}

}  // namespace
}  // namespace kestrum::media
