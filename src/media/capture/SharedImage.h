// Pixels of the server as 0x00RRGGBB, by shared memory where the display is on this machine, else over the connection.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "media/capture/Area.h"
#include "media/capture/PixelFormat.h"
#include "media/capture/XcbHandle.h"

namespace kestrum::media {

class SharedImage {
  public:
    /// Makes room for areas of up to the size of `largest`. `format` is that of the root window.
    SharedImage(xcb_connection_t* connection, xcb_window_t root, const PixelFormat& format, const Area& largest);
    ~SharedImage();
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;

    /// Reads an area of the root window; its lines follow each other without padding. Valid until the next call;
    /// nullptr if the server did not give it.
    const std::uint32_t* Read(const Area& area);

  private:
    bool Attach(std::size_t bytes);
    const void* Fetch(const Area& area);

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    PixelFormat m_format;
    std::vector<std::uint32_t> m_expanded;
    xcb_shm_seg_t m_segment = 0;
    void* m_memory = nullptr;
    XcbOwned<xcb_get_image_reply_t> m_reply;
};

}  // namespace kestrum::media
