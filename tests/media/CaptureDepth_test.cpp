// Displays of every colour depth that can be recorded, and those that cannot.
#include <gtest/gtest.h>

#include "media/capture/PixelFormat.h"
#include "media/capture/Screen.h"
#include "real/TestWindow.h"
#include "real/XvfbServer.h"

namespace kestrum::media {
namespace {

using Pixels = std::vector<std::uint32_t>;

TEST(PixelFormat, SixteenBits_SpreadOverTheWholeRange) {
    const PixelFormat format(16, 32, 0xF800, 0x07E0, 0x001F);
    EXPECT_FALSE(format.IsDirect());
    // Two lines of three pixels, each padded to eight bytes.
    const std::vector<std::uint16_t> picture{0xFFFF, 0x0000, 0xF800, 0xDEAD, 0x07E0, 0x001F, 0x8410, 0xDEAD};
    ASSERT_EQ(format.BytesOf(3, 2), picture.size() * 2);
    Pixels pixels(6);
    format.Expand(reinterpret_cast<const std::uint8_t*>(picture.data()), 3, 2, pixels.data());
    EXPECT_EQ(pixels, (Pixels{0xFFFFFF, 0, 0xFF0000, 0x00FF00, 0x0000FF, 0x848284}));
}

TEST(PixelFormat, TenBitsAColour_LoseTheTwoLowest) {
    const PixelFormat format(32, 32, 0x3FF00000, 0xFFC00, 0x3FF);
    EXPECT_FALSE(format.IsDirect());
    const Pixels picture{0x3FFFFFFF, 0x3FF00000, 0x200};
    Pixels pixels(3);
    format.Expand(reinterpret_cast<const std::uint8_t*>(picture.data()), 3, 1, pixels.data());
    EXPECT_EQ(pixels, (Pixels{0xFFFFFF, 0xFF0000, 0x000080}));
}

TEST(PixelFormat, PackedTwentyFourBits_AreReadByteByByte) {
    const PixelFormat format(24, 32, 0xFF0000, 0xFF00, 0xFF);
    const std::vector<std::uint8_t> picture{0x01, 0x02, 0x03, 0xEE};
    Pixels pixels(1);
    ASSERT_EQ(format.BytesOf(1, 1), picture.size());
    format.Expand(picture.data(), 1, 1, pixels.data());
    EXPECT_EQ(pixels, (Pixels{0x030201}));
}

TEST(PixelFormat, TheUsualOne_IsTakenAsItComes) {
    EXPECT_TRUE(PixelFormat(32, 32, 0xFF0000, 0xFF00, 0xFF).IsDirect());
    EXPECT_FALSE(PixelFormat(32, 32, 0xFF, 0xFF00, 0xFF0000).IsDirect()) << "blue first";
}

std::uint32_t ColourAt(const BgraPicture& picture, int x, int y) {
    return picture.pixels[static_cast<std::size_t>(y) * picture.width + x] & 0xFFFFFF;
}

TEST(CaptureDepth, ADisplayOfSixteenBits_IsSeenInItsColours) {
    const real::XvfbServer server(320, 240, 16);
    real::TestWindow window(server.Name(), 0, 0, 320, 240);
    constexpr std::uint32_t kRed = 0xF800, kBlue = 0x001F;  // 5, 6 and 5 bits
    window.Fill(kRed);
    Screen screen(server.Name(), {10, 20, 302, 200});
    BgraPicture picture(302, 200);
    ChangeMap changes(302, 200);
    screen.Fetch(picture, changes, true);
    EXPECT_EQ(ColourAt(picture, 0, 0), 0xFF0000U);
    EXPECT_EQ(ColourAt(picture, 301, 199), 0xFF0000U);

    window.FillArea(kBlue, 13, 40, 3, 5);  // lines of an odd number of pixels are padded
    ASSERT_TRUE(real::WaitFor([&] {
        screen.Pump();
        return screen.HasNews();
    }));
    screen.Fetch(picture, changes, false);
    EXPECT_EQ(ColourAt(picture, 3, 20), 0x0000FFU);
    EXPECT_EQ(ColourAt(picture, 5, 24), 0x0000FFU);
    EXPECT_EQ(ColourAt(picture, 6, 24), 0xFF0000U);
    EXPECT_EQ(ColourAt(picture, 3, 25), 0xFF0000U);
}

TEST(CaptureDepth, ADisplayWithAPalette_IsRefusedInASentence) {
    const real::XvfbServer server(320, 240, 8);
    try {
        const Screen screen(server.Name(), {0, 0, 320, 240});
        FAIL() << "a palette was taken for colours";
    } catch (const CaptureError& error) {
        EXPECT_STREQ(error.what(), "The display has a colour depth of 8 bits; a recording needs 16, 24 or 32.");
    }
}

}  // namespace
}  // namespace kestrum::media
