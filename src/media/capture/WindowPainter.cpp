#include "media/capture/WindowPainter.h"

#include <algorithm>

#include "media/capture/CaptureError.h"

namespace kestrum::media {
namespace {

// Room in a request for its own words.
constexpr std::size_t kRequestWords = 16;

}  // namespace

WindowPainter::WindowPainter(const std::string& display, std::uint32_t window)
    : m_connection(xcb_connect(display.empty() ? nullptr : display.c_str(), nullptr)), m_window(window) {
    xcb_connection_t* c = m_connection.get();
    const auto geometry = Own(xcb_get_geometry_reply(c, xcb_get_geometry(c, m_window), nullptr));
    if (!geometry || (geometry->depth != 24 && geometry->depth != 32))
        throw CaptureError(CaptureErrorKind::kNoDisplay, "The camera's picture cannot be drawn into this window.");
    m_depth = geometry->depth;
    m_context = xcb_generate_id(c);
    const std::uint32_t black = 0xFF000000;  // solid in a window that can be seen through
    xcb_create_gc(c, m_context, m_window, XCB_GC_FOREGROUND, &black);
}

bool WindowPainter::IsGone() {
    // What was asked of a window that has gone comes back as an error.
    while (const auto event = Own(xcb_poll_for_event(m_connection.get()))) {
        if (event->response_type == 0) m_isGone = true;
    }
    m_isGone = m_isGone || xcb_connection_has_error(m_connection.get());
    return m_isGone;
}

bool WindowPainter::Draw(const BgraPicture& picture) {
    if (IsGone()) return false;
    const std::size_t words = xcb_get_maximum_request_length(m_connection.get()) - kRequestWords;
    const int linesAtOnce = std::max(1, static_cast<int>(words) / picture.width);
    for (int y = 0; y < picture.height; y += linesAtOnce) {
        const int lines = std::min(linesAtOnce, picture.height - y);
        const auto bytes = static_cast<std::uint32_t>(picture.width) * static_cast<std::uint32_t>(lines) * 4;
        xcb_put_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_context,
                      static_cast<std::uint16_t>(picture.width), static_cast<std::uint16_t>(lines), 0,
                      static_cast<std::int16_t>(y), 0, m_depth, bytes,
                      reinterpret_cast<const std::uint8_t*>(picture.Line(y)));
    }
    m_drawn = {0, 0, static_cast<std::uint16_t>(picture.width), static_cast<std::uint16_t>(picture.height)};
    xcb_flush(m_connection.get());
    return !IsGone();
}

void WindowPainter::Clear() {
    if (IsGone()) return;
    xcb_poly_fill_rectangle(m_connection.get(), m_window, m_context, 1, &m_drawn);
    xcb_flush(m_connection.get());
}

}  // namespace kestrum::media
