#include "media/capture/PixelFormat.h"

#include <bit>

namespace kestrum::media {
namespace {

constexpr int kBitsPerByte = 8;
constexpr std::uint32_t kFull = 0xFF;

const xcb_visualtype_t* RootVisual(const xcb_screen_t& screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual) return visual.data;
        }
    }
    return nullptr;
}

}  // namespace

std::uint32_t Channel::Of(std::uint32_t pixel) const {
    if (mask == 0) return 0;
    const int shift = std::countr_zero(mask);
    const std::uint32_t most = mask >> shift;
    const std::uint32_t value = (pixel & mask) >> shift;
    return (value * kFull + most / 2) / most;
}

PixelFormat::PixelFormat(int bitsPerPixel, int linePad, std::uint32_t red, std::uint32_t green, std::uint32_t blue)
    : m_bytesPerPixel(static_cast<std::size_t>(bitsPerPixel / kBitsPerByte)),
      m_padBytes(static_cast<std::size_t>(linePad / kBitsPerByte)),
      m_red{red},
      m_green{green},
      m_blue{blue},
      m_isDirect(bitsPerPixel == 32 && red == 0xFF0000 && green == 0xFF00 && blue == 0xFF) {}

std::optional<PixelFormat> PixelFormat::Of(xcb_connection_t* connection, const xcb_screen_t& screen) {
    const xcb_visualtype_t* visual = RootVisual(screen);
    if (!visual || visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR) return std::nullopt;
    auto formats = xcb_setup_pixmap_formats_iterator(xcb_get_setup(connection));
    for (; formats.rem; xcb_format_next(&formats)) {
        const auto& format = *formats.data;
        const int bits = format.bits_per_pixel;
        if (format.depth != screen.root_depth || (bits != 16 && bits != 24 && bits != 32)) continue;
        return PixelFormat(bits, format.scanline_pad, visual->red_mask, visual->green_mask, visual->blue_mask);
    }
    return std::nullopt;
}

std::size_t PixelFormat::Stride(int width) const {
    const std::size_t bytes = static_cast<std::size_t>(width) * m_bytesPerPixel;
    return (bytes + m_padBytes - 1) / m_padBytes * m_padBytes;
}

std::uint32_t PixelFormat::PixelAt(const std::uint8_t* at) const {
    std::uint32_t pixel = 0;
    for (std::size_t i = m_bytesPerPixel; i-- > 0;) pixel = pixel << kBitsPerByte | at[i];
    return pixel;
}

void PixelFormat::Expand(const std::uint8_t* picture, int width, int height, std::uint32_t* target) const {
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* at = picture + Stride(width) * static_cast<std::size_t>(y);
        for (int x = 0; x < width; ++x, at += m_bytesPerPixel) {
            const std::uint32_t pixel = PixelAt(at);
            *target++ = m_red.Of(pixel) << 16 | m_green.Of(pixel) << 8 | m_blue.Of(pixel);
        }
    }
}

}  // namespace kestrum::media
