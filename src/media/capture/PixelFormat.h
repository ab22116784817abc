// How the display writes a pixel of its root window, and what that is as 0x00RRGGBB. Displays of 16 bits a pixel (5, 6
// and 5 of each colour) and of 10 bits a colour are read as well as the usual ones; those with a palette are not.
#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace kestrum::media {

/// One colour within a pixel.
struct Channel {
    std::uint32_t mask = 0;
    /// Its value in `pixel`, spread over 0 to 255.
    std::uint32_t Of(std::uint32_t pixel) const;
};

class PixelFormat {
  public:
    /// `bitsPerPixel` is 16, 24 or 32; the lines of a picture are padded to `linePad` bits.
    PixelFormat(int bitsPerPixel, int linePad, std::uint32_t red, std::uint32_t green, std::uint32_t blue);
    /// The format of the screen's root window; none if it has a palette or another number of bits.
    static std::optional<PixelFormat> Of(xcb_connection_t* connection, const xcb_screen_t& screen);

    /// Pixels are 0x00RRGGBB as they come, without padding.
    bool IsDirect() const { return m_isDirect; }
    std::size_t BytesOf(int width, int height) const { return Stride(width) * static_cast<std::size_t>(height); }
    /// Writes a picture as 0x00RRGGBB, its lines one after the other.
    void Expand(const std::uint8_t* picture, int width, int height, std::uint32_t* target) const;

  private:
    std::size_t Stride(int width) const;
    std::uint32_t PixelAt(const std::uint8_t* at) const;

    std::size_t m_bytesPerPixel;
    std::size_t m_padBytes;
    Channel m_red, m_green, m_blue;
    bool m_isDirect;
};

}  // namespace kestrum::media
