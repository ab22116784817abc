#include "media/capture/SharedImage.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>

namespace kestrum::media {
namespace {

constexpr std::uint32_t kAllPlanes = 0xFFFFFFFF;
// Windows that a compositor blends carry their opacity in the upper byte.
constexpr int kSeeThroughDepth = 32;
const PixelFormat kSeeThrough(32, 32, 0xFF0000, 0xFF00, 0xFF);

bool HasExtension(xcb_connection_t* connection, xcb_extension_t* extension) {
    const auto* data = xcb_get_extension_data(connection, extension);
    return data && data->present;
}

}  // namespace

SharedImage::SharedImage(xcb_connection_t* connection, int rootDepth, const PixelFormat& format, const Area& largest)
    : m_connection(connection), m_formats{{rootDepth, format}, {kSeeThroughDepth, kSeeThrough}} {
    const std::size_t bytes =
        std::max(format.BytesOf(largest.width, largest.height), kSeeThrough.BytesOf(largest.width, largest.height));
    if (!HasExtension(connection, &xcb_shm_id) || !Attach(bytes)) m_segment = 0;
}

SharedImage::~SharedImage() {
    if (m_segment) xcb_shm_detach(m_connection, m_segment);
    if (m_memory) shmdt(m_memory);
}

bool SharedImage::Attach(std::size_t bytes) {
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id < 0) return false;
    void* memory = shmat(id, nullptr, 0);
    if (memory == reinterpret_cast<void*>(-1)) {
        shmctl(id, IPC_RMID, nullptr);
        return false;
    }
    m_memory = memory;
    m_segment = xcb_generate_id(m_connection);
    const auto cookie = xcb_shm_attach_checked(m_connection, m_segment, static_cast<std::uint32_t>(id), 0);
    const auto error = Own(xcb_request_check(m_connection, cookie));
    // Marked for removal now that both sides hold it, so that no crash leaves it behind.
    shmctl(id, IPC_RMID, nullptr);
    return !error;
}

const std::uint32_t* SharedImage::Read(xcb_drawable_t source, int depth, const Area& area) {
    const auto format = m_formats.find(depth);
    if (format == m_formats.end()) return nullptr;
    const void* pixels = Fetch(source, area, format->second);
    if (!pixels || format->second.IsDirect()) return static_cast<const std::uint32_t*>(pixels);
    m_expanded.resize(static_cast<std::size_t>(area.width) * area.height);
    format->second.Expand(static_cast<const std::uint8_t*>(pixels), area.width, area.height, m_expanded.data());
    return m_expanded.data();
}

const void* SharedImage::Fetch(xcb_drawable_t source, const Area& area, const PixelFormat& format) {
    const auto x = static_cast<std::int16_t>(area.x), y = static_cast<std::int16_t>(area.y);
    const auto width = static_cast<std::uint16_t>(area.width), height = static_cast<std::uint16_t>(area.height);
    if (m_segment) {
        const auto cookie = xcb_shm_get_image(m_connection, source, x, y, width, height, kAllPlanes,
                                              XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment, 0);
        const auto reply = Own(xcb_shm_get_image_reply(m_connection, cookie, nullptr));
        return reply ? m_memory : nullptr;
    }
    const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, source, x, y, width, height, kAllPlanes);
    m_reply = Own(xcb_get_image_reply(m_connection, cookie, nullptr));
    const std::size_t needed = format.BytesOf(area.width, area.height);
    if (!m_reply || m_reply->length * sizeof(std::uint32_t) < needed) return nullptr;
    return xcb_get_image_data(m_reply.get());
}

}  // namespace kestrum::media
