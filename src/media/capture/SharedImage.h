// Pixels of the server as 0x00RRGGBB, by shared memory where the display is on this machine, else over the connection.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "media/capture/Area.h"
#include "media/capture/PixelFormat.h"
#include "media/capture/XcbHandle.h"

namespace kestrum::media {

class SharedImage {
  public:
    /// Makes room for areas of up to the size of `largest`. `format` is that of the root window, `rootDepth` bits deep.
    SharedImage(xcb_connection_t* connection, int rootDepth, const PixelFormat& format, const Area& largest);
    ~SharedImage();
    SharedImage(const SharedImage&) = delete;
    SharedImage& operator=(const SharedImage&) = delete;

    /// Reads an area of a window, with what lies over it, or of a pixmap, of the root's depth or of 32 bits
    /// (premultiplied ARGB then); its lines follow each other without padding. Valid until the next call; nullptr for
    /// other depths and if the server did not give it.
    const std::uint32_t* Read(xcb_drawable_t source, int depth, const Area& area);

  private:
    bool Attach(std::size_t bytes);
    const void* Fetch(xcb_drawable_t source, const Area& area, const PixelFormat& format);

    xcb_connection_t* m_connection;
    std::map<int, PixelFormat> m_formats;  ///< by depth
    std::vector<std::uint32_t> m_expanded;
    xcb_shm_seg_t m_segment = 0;
    void* m_memory = nullptr;
    XcbOwned<xcb_get_image_reply_t> m_reply;
};

}  // namespace kestrum::media
