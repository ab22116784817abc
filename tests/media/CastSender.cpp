#include "CastSender.h"

#include <pipewire/pipewire.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrum::media {
namespace {

constexpr int kDamages = 4;
constexpr std::uint32_t kBytes = 4;

std::int32_t Signed(std::size_t value) {
    return static_cast<std::int32_t>(value);
}

}  // namespace

class CastSender::Impl {
  public:
    Impl(int remote, int width, int height) : m_width(width), m_height(height) {
        pw_init(nullptr, nullptr);
        m_loop = pw_thread_loop_new("sender", nullptr);
        m_context = pw_context_new(pw_thread_loop_get_loop(m_loop), nullptr, 0);
        pw_thread_loop_start(m_loop);
        Lock lock(m_loop);
        m_core = pw_context_connect_fd(m_context, remote, nullptr, 0);
        if (!m_core) throw std::runtime_error("no PipeWire");
        LinkReaders();
        Connect();
    }
    ~Impl() {
        pw_thread_loop_stop(m_loop);
        if (m_stream) pw_stream_destroy(m_stream);
        if (m_link) pw_proxy_destroy(m_link);
        pw_proxy_destroy(reinterpret_cast<pw_proxy*>(m_registry));
        pw_core_disconnect(m_core);
        pw_context_destroy(m_context);
        pw_thread_loop_destroy(m_loop);
        pw_deinit();
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    std::uint32_t Node() const {
        Lock lock(m_loop);
        return pw_stream_get_node_id(m_stream);
    }
    bool IsRead() const {
        Lock lock(m_loop);
        return pw_stream_get_state(m_stream, nullptr) == PW_STREAM_STATE_STREAMING;
    }

    bool Send(std::uint32_t colour, const Area& part, bool tells, std::uint32_t flags) {
        Lock lock(m_loop);
        pw_buffer* room = pw_stream_dequeue_buffer(m_stream);
        if (!room) return false;
        Draw(colour, part);
        Fill(*room->buffer, flags);
        Tell(*room->buffer, part, tells);
        pw_stream_queue_buffer(m_stream, room);
        pw_stream_trigger_process(m_stream);
        return true;
    }

    void Resize(int width, int height) {
        Lock lock(m_loop);
        m_width = width;
        m_height = height;
        m_picture.clear();
        std::uint8_t memory[1024];
        spa_pod_builder b{};
        spa_pod_builder_init(&b, memory, sizeof memory);
        const spa_pod* format = Format(b);
        pw_stream_update_params(m_stream, &format, 1);
    }

  private:
    class Lock {
      public:
        explicit Lock(pw_thread_loop* loop) : m_loop(loop) { pw_thread_loop_lock(loop); }
        ~Lock() { pw_thread_loop_unlock(m_loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        pw_thread_loop* m_loop;
    };

    static Impl& Of(void* self) { return *static_cast<Impl*>(self); }

    /// Does what a session manager would: who takes pictures gets ours.
    void LinkReaders() {
        m_registry = pw_core_get_registry(m_core, PW_VERSION_REGISTRY, 0);
        m_registryEvents.version = PW_VERSION_REGISTRY_EVENTS;
        m_registryEvents.global = [](void* self, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                                     const spa_dict* properties) {
            const char* kind = properties ? spa_dict_lookup(properties, PW_KEY_MEDIA_CLASS) : nullptr;
            if (std::strcmp(type, PW_TYPE_INTERFACE_Node) != 0 || !kind) return;
            if (std::string(kind) == "Stream/Input/Video") Of(self).m_reader = id;
            Of(self).Link();
        };
        pw_registry_add_listener(m_registry, &m_registryHook, &m_registryEvents, this);
    }

    void Link() {
        const std::uint32_t node = m_stream ? pw_stream_get_node_id(m_stream) : SPA_ID_INVALID;
        if (m_link || m_reader == 0 || node == SPA_ID_INVALID) return;
        pw_properties* words = pw_properties_new(nullptr, nullptr);
        pw_properties_set(words, PW_KEY_LINK_OUTPUT_NODE, std::to_string(node).c_str());
        pw_properties_set(words, PW_KEY_LINK_INPUT_NODE, std::to_string(m_reader).c_str());
        m_link = static_cast<pw_proxy*>(
            pw_core_create_object(m_core, "link-factory", PW_TYPE_INTERFACE_Link, PW_VERSION_LINK, &words->dict, 0));
        pw_properties_free(words);
    }

    void Connect() {
        m_stream = pw_stream_new(m_core, "screen", pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", nullptr));
        m_events.version = PW_VERSION_STREAM_EVENTS;
        m_events.state_changed = [](void* self, pw_stream_state, pw_stream_state, const char*) { Of(self).Link(); };
        m_events.param_changed = [](void* self, std::uint32_t id, const spa_pod* param) {
            if (id == SPA_PARAM_Format && param) Of(self).OfferBuffers();
        };
        pw_stream_add_listener(m_stream, &m_hook, &m_events, this);
        std::uint8_t memory[1024];
        spa_pod_builder b{};
        spa_pod_builder_init(&b, memory, sizeof memory);
        const spa_pod* format = Format(b);
        pw_stream_connect(m_stream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
                          static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS), &format, 1);
    }

    const spa_pod* Format(spa_pod_builder& b) const {
        spa_video_info_raw info{};
        info.format = SPA_VIDEO_FORMAT_RGBx;
        info.size = {static_cast<std::uint32_t>(m_width), static_cast<std::uint32_t>(m_height)};
        info.framerate = {0, 1};
        return spa_format_video_raw_build(&b, SPA_PARAM_EnumFormat, &info);
    }

    void OfferBuffers() {
        std::uint8_t memory[1024];
        spa_pod_builder b{};
        spa_pod_builder_init(&b, memory, sizeof memory);
        const spa_pod* params[3];
        spa_pod_frame object;
        spa_pod_builder_push_object(&b, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
        const std::pair<std::uint32_t, std::int32_t> numbers[] = {
            {SPA_PARAM_BUFFERS_blocks, 1},
            {SPA_PARAM_BUFFERS_size, m_height * Stride()},
            {SPA_PARAM_BUFFERS_stride, Stride()},
        };
        for (const auto& [key, number] : numbers) {
            spa_pod_builder_prop(&b, key, 0);
            spa_pod_builder_int(&b, number);
        }
        params[0] = static_cast<const spa_pod*>(spa_pod_builder_pop(&b, &object));
        spa_pod_builder_push_object(&b, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
        spa_pod_builder_prop(&b, SPA_PARAM_META_type, 0);
        spa_pod_builder_id(&b, SPA_META_VideoDamage);
        spa_pod_builder_prop(&b, SPA_PARAM_META_size, 0);
        spa_pod_builder_int(&b, Signed(kDamages * sizeof(spa_meta_region)));
        params[1] = static_cast<const spa_pod*>(spa_pod_builder_pop(&b, &object));
        spa_pod_builder_push_object(&b, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
        spa_pod_builder_prop(&b, SPA_PARAM_META_type, 0);
        spa_pod_builder_id(&b, SPA_META_Header);
        spa_pod_builder_prop(&b, SPA_PARAM_META_size, 0);
        spa_pod_builder_int(&b, Signed(sizeof(spa_meta_header)));
        params[2] = static_cast<const spa_pod*>(spa_pod_builder_pop(&b, &object));
        pw_stream_update_params(m_stream, params, 3);
    }

    /// Lines are longer than the picture needs, as those of graphics cards are.
    std::int32_t Stride() const { return m_width * Signed(kBytes) + 64; }

    void Draw(std::uint32_t colour, const Area& part) {
        m_picture.resize(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height));
        for (int y = part.y; y < part.Bottom(); ++y) {
            for (int x = part.x; x < part.Right(); ++x) m_picture[static_cast<std::size_t>(y * m_width + x)] = colour;
        }
    }

    void Fill(const spa_buffer& buffer, std::uint32_t flags) const {
        const spa_data& data = buffer.datas[0];
        auto* line = static_cast<std::uint8_t*>(data.data);
        const std::uint32_t* from = m_picture.data();
        for (int y = 0; y < m_height; ++y, line += Stride()) {
            for (int x = 0; x < m_width; ++x, ++from) {
                const std::uint32_t redFirst =
                    0xFF000000 | (*from & 0xFF) << 16 | (*from & 0xFF00) | (*from >> 16 & 0xFF);
                std::memcpy(line + x * Signed(kBytes), &redFirst, kBytes);
            }
        }
        data.chunk->offset = 0;
        data.chunk->stride = Stride();
        data.chunk->size = static_cast<std::uint32_t>(m_height * Stride());
        data.chunk->flags = static_cast<std::int32_t>(flags);
    }

    void Tell(const spa_buffer& buffer, const Area& part, bool tells) {
        auto* header =
            static_cast<spa_meta_header*>(spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
        if (header) *header = {0, 0, 0, 0, ++m_number};
        const spa_meta* meta = spa_buffer_find_meta(&buffer, SPA_META_VideoDamage);
        if (!meta) return;
        std::memset(meta->data, 0, meta->size);
        if (!tells) return;
        auto& region = static_cast<spa_meta_region*>(meta->data)->region;
        region.position = {part.x, part.y};
        region.size = {static_cast<std::uint32_t>(part.width), static_cast<std::uint32_t>(part.height)};
    }

    int m_width, m_height;
    std::vector<std::uint32_t> m_picture;
    std::uint64_t m_number = 0;
    pw_thread_loop* m_loop = nullptr;
    pw_context* m_context = nullptr;
    pw_core* m_core = nullptr;
    pw_registry* m_registry = nullptr;
    pw_registry_events m_registryEvents{};
    spa_hook m_registryHook{};
    std::uint32_t m_reader = 0;
    pw_proxy* m_link = nullptr;
    pw_stream* m_stream = nullptr;
    pw_stream_events m_events{};
    spa_hook m_hook{};
};

CastSender::CastSender(int remote, int width, int height) : m_impl(std::make_unique<Impl>(remote, width, height)) {}
CastSender::~CastSender() = default;

std::uint32_t CastSender::Node() const {
    return m_impl->Node();
}
bool CastSender::IsRead() const {
    return m_impl->IsRead();
}
bool CastSender::Send(std::uint32_t colour, const Area& part, bool tells) {
    return m_impl->Send(colour, part, tells, 0);
}
bool CastSender::SendDamaged() {
    return m_impl->Send(0, {}, true, SPA_CHUNK_FLAG_CORRUPTED);
}
void CastSender::Resize(int width, int height) {
    m_impl->Resize(width, height);
}

}  // namespace kestrum::media
