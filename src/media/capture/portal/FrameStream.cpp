#include "media/capture/portal/FrameStream.h"

#include <pipewire/pipewire.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/format-utils.h>

#include <utility>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/portal/StreamParams.h"

namespace kestrum::media {
namespace {

// A stream that pauses is being agreed on anew, or its sender has gone without a word.
constexpr std::int64_t kLongestPauseNs = 3 * kNsPerSecond;
constexpr int kBytesPerPixel = 4;

CaptureError NoPicture(const std::string& why) {
    return {CaptureErrorKind::kNoDisplay, "PipeWire does not give the picture of the screen: " + why + "."};
}

struct LoopDeleter {
    void operator()(pw_thread_loop* loop) const { pw_thread_loop_destroy(loop); }
};
struct ContextDeleter {
    void operator()(pw_context* context) const { pw_context_destroy(context); }
};
struct CoreDeleter {
    void operator()(pw_core* core) const { pw_core_disconnect(core); }
};
struct StreamDeleter {
    void operator()(pw_stream* stream) const { pw_stream_destroy(stream); }
};

/// The library, for as long as it is used.
class Library {
  public:
    Library() { pw_init(nullptr, nullptr); }
    ~Library() { pw_deinit(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

/// While it lives nothing of PipeWire runs.
class Hold {
  public:
    explicit Hold(pw_thread_loop* loop) : m_loop(loop) { pw_thread_loop_lock(m_loop); }
    ~Hold() { pw_thread_loop_unlock(m_loop); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

  private:
    pw_thread_loop* const m_loop;
};

/// Ends the loop's thread before what it works on goes.
class StopAtEnd {
  public:
    explicit StopAtEnd(pw_thread_loop* loop) : m_loop(loop) {}
    ~StopAtEnd() { pw_thread_loop_stop(m_loop); }
    StopAtEnd(const StopAtEnd&) = delete;
    StopAtEnd& operator=(const StopAtEnd&) = delete;

  private:
    pw_thread_loop* const m_loop;
};

/// How the pixels of a picture lie in memory.
struct FrameFormat {
    FrameExtent size;
    bool redFirst = false;
};

std::uint32_t FromRedFirst(std::uint32_t pixel) {
    return (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF);
}

template <typename Record>
const Record* MetaOf(const spa_buffer& buffer, spa_meta_type type) {
    return static_cast<const Record*>(spa_buffer_find_meta_data(&buffer, type, sizeof(Record)));
}

bool IsTurned(const spa_buffer& buffer) {
    const auto* turned = MetaOf<spa_meta_videotransform>(buffer, SPA_META_VideoTransform);
    return turned && turned->transform != SPA_META_TRANSFORMATION_None;
}

/// The buffer's first pixel; nullptr if it holds no whole picture.
const std::uint8_t* PixelsOf(const spa_buffer& buffer, const FrameExtent& size, std::ptrdiff_t& stride) {
    const auto* header = MetaOf<spa_meta_header>(buffer, SPA_META_Header);
    if (header && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED)) return nullptr;
    if (buffer.n_datas < 1 || !buffer.datas[0].data) return nullptr;
    const spa_data& data = buffer.datas[0];
    const spa_chunk& chunk = *data.chunk;
    const std::ptrdiff_t line = static_cast<std::ptrdiff_t>(size.width) * kBytesPerPixel;
    stride = chunk.stride != 0 ? chunk.stride : line;
    const std::ptrdiff_t end = chunk.offset + stride * (size.height - 1) + line;
    const bool isWhole = chunk.size > 0 && stride >= line && end <= static_cast<std::ptrdiff_t>(data.maxsize);
    if (!isWhole || (chunk.flags & SPA_CHUNK_FLAG_CORRUPTED)) return nullptr;
    return static_cast<const std::uint8_t*>(data.data) + chunk.offset;
}

/// Where the picture changed, as its sender says; nothing if he does not, or has more to say than there is room for.
Areas DamageOf(const spa_buffer& buffer) {
    Areas damages;
    const spa_meta* meta = spa_buffer_find_meta(&buffer, SPA_META_VideoDamage);
    if (!meta) return damages;
    const auto* regions = static_cast<const spa_meta_region*>(meta->data);
    const std::size_t room = meta->size / sizeof(spa_meta_region);
    for (std::size_t i = 0; i < room; ++i) {
        const spa_region& r = regions[i].region;
        if (r.size.width == 0 || r.size.height == 0) return damages;
        damages.push_back(
            {r.position.x, r.position.y, static_cast<int>(r.size.width), static_cast<int>(r.size.height)});
    }
    return {};
}

}  // namespace

class FrameStream::Impl {
  public:
    Impl(int remote, std::uint32_t node) : m_loop(pw_thread_loop_new("screen", nullptr)) {
        m_context.reset(pw_context_new(pw_thread_loop_get_loop(m_loop.get()), nullptr, 0));
        if (!m_context || pw_thread_loop_start(m_loop.get()) < 0) throw NoPicture("it cannot be used");
        const Hold hold(m_loop.get());
        m_core.reset(pw_context_connect_fd(m_context.get(), remote, nullptr, 0));
        if (!m_core) throw NoPicture("no connection");
        Connect(node);
    }
    // A loop that stands still lets the thread of the data call us itself, while our parts go.
    ~Impl() { StopListening(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    bool IsLost() const {
        const Hold hold(m_loop.get());
        if (m_state == PW_STREAM_STATE_ERROR || m_state == PW_STREAM_STATE_UNCONNECTED) return true;
        return m_hasStreamed && m_state == PW_STREAM_STATE_PAUSED && MonotonicNs() > m_stateNs + kLongestPauseNs;
    }

    FrameExtent Size() const {
        const Hold hold(m_loop.get());
        return m_size;
    }

    Areas TakeFrame() {
        const Hold hold(m_loop.get());
        hasNewFrame = false;
        if (m_newest) GiveBack(std::exchange(m_current, std::exchange(m_newest, nullptr)));
        return std::exchange(m_drawn, {});
    }

    bool Copy(const Area& part, std::uint32_t* target) const {
        const Hold hold(m_loop.get());
        const FrameExtent size = m_format.size;
        if (!m_current || Intersect(part, {0, 0, size.width, size.height}) != part) return false;
        std::ptrdiff_t stride = 0;
        const auto* pixels = PixelsOf(*m_current->buffer, size, stride);
        if (!pixels) return false;
        for (int y = part.y; y < part.Bottom(); ++y) {
            const auto* line = reinterpret_cast<const std::uint32_t*>(pixels + y * stride) + part.x;
            for (int x = 0; x < part.width; ++x) {
                *target++ = m_format.redFirst ? FromRedFirst(line[x]) : line[x] & 0xFFFFFF;
            }
        }
        return true;
    }

    WakeSignal wake;
    std::atomic<bool> hasNewFrame{false};

  private:
    void StopListening() {
        const Hold hold(m_loop.get());
        spa_hook_remove(&m_listener);
    }

    static Impl& Of(void* self) { return *static_cast<Impl*>(self); }

    static const pw_stream_events& Events() {
        static const pw_stream_events events = [] {
            pw_stream_events e{};
            e.version = PW_VERSION_STREAM_EVENTS;
            e.state_changed = [](void* self, pw_stream_state, pw_stream_state now, const char*) {
                Of(self).OnState(now);
            };
            e.param_changed = [](void* self, std::uint32_t id, const spa_pod* param) {
                if (id == SPA_PARAM_Format && param) Of(self).OnFormat(*param);
            };
            e.remove_buffer = [](void* self, pw_buffer* buffer) { Of(self).OnRemove(buffer); };
            e.process = [](void* self) { Of(self).OnPictures(); };
            return e;
        }();
        return events;
    }

    void Connect(std::uint32_t node) {
        pw_properties* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture",
                                                      PW_KEY_MEDIA_ROLE, "Screen", nullptr);
        m_stream.reset(pw_stream_new(m_core.get(), "Kestrum", properties));
        if (!m_stream) throw NoPicture("no stream");
        pw_stream_add_listener(m_stream.get(), &m_listener, &Events(), this);
        StreamParams params;
        params.OfferFormats();
        const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                                        PW_STREAM_FLAG_DONT_RECONNECT);
        const int result = pw_stream_connect(m_stream.get(), PW_DIRECTION_INPUT, node, flags, params.List().data(),
                                             static_cast<std::uint32_t>(params.List().size()));
        if (result < 0) throw NoPicture("the stream is refused");
    }

    void OnState(pw_stream_state now) {
        m_state = now;
        m_stateNs = MonotonicNs();
        m_hasStreamed |= now == PW_STREAM_STATE_STREAMING;
        wake.Raise();
    }

    void OnFormat(const spa_pod& format) {
        spa_video_info_raw info{};
        if (spa_format_video_raw_parse(&format, &info) < 0) return;
        m_format.size = {static_cast<int>(info.size.width), static_cast<int>(info.size.height)};
        m_format.redFirst = info.format == SPA_VIDEO_FORMAT_RGBx || info.format == SPA_VIDEO_FORMAT_RGBA;
        StreamParams params;
        params.OfferBuffers();
        pw_stream_update_params(m_stream.get(), params.List().data(), static_cast<std::uint32_t>(params.List().size()));
    }

    void OnRemove(pw_buffer* buffer) {
        if (m_newest == buffer) m_newest = nullptr;
        if (m_current == buffer) m_current = nullptr;
    }

    void OnPictures() {
        while (pw_buffer* fresh = pw_stream_dequeue_buffer(m_stream.get())) {
            if (Take(*fresh->buffer)) std::swap(fresh, m_newest);
            GiveBack(fresh);
        }
        hasNewFrame = m_newest != nullptr;
        wake.Raise();
    }

    /// A picture before this one did not come, and nobody knows where it changed.
    bool HasGap(const spa_buffer& buffer) {
        const auto* header = MetaOf<spa_meta_header>(buffer, SPA_META_Header);
        const std::uint64_t last = std::exchange(m_number, header ? header->seq : 0);
        return m_number != 0 && m_number != last + 1;
    }

    /// True if it is a picture.
    bool Take(const spa_buffer& buffer) {
        std::ptrdiff_t stride = 0;
        const bool isPicture = PixelsOf(buffer, m_format.size, stride) != nullptr;
        if (isPicture) m_size = IsTurned(buffer) ? FrameExtent{} : m_format.size;
        const Areas damages = isPicture ? DamageOf(buffer) : Areas{};
        const Area all{0, 0, m_format.size.width, m_format.size.height};
        if (HasGap(buffer) || damages.empty() || m_drawn.size() > kMostDrawn) {
            m_drawn = {all};
        } else {
            m_drawn.insert(m_drawn.end(), damages.begin(), damages.end());
        }
        return isPicture;
    }

    void GiveBack(pw_buffer* buffer) {
        if (buffer) pw_stream_queue_buffer(m_stream.get(), buffer);
    }

    // Past this it is all of the picture.
    static constexpr std::size_t kMostDrawn = 64;

    const Library m_library;
    std::unique_ptr<pw_thread_loop, LoopDeleter> m_loop;
    std::unique_ptr<pw_context, ContextDeleter> m_context;
    std::unique_ptr<pw_core, CoreDeleter> m_core;
    spa_hook m_listener{};
    std::unique_ptr<pw_stream, StreamDeleter> m_stream;
    pw_stream_state m_state = PW_STREAM_STATE_CONNECTING;
    std::int64_t m_stateNs = 0;
    bool m_hasStreamed = false;
    FrameFormat m_format;        ///< of what is coming
    FrameExtent m_size;          ///< of what came
    std::uint64_t m_number = 0;  ///< of the last picture, where they are numbered
    pw_buffer* m_newest = nullptr;
    pw_buffer* m_current = nullptr;
    Areas m_drawn;
    const StopAtEnd m_stop{m_loop.get()};
};

FrameStream::FrameStream(int remote, std::uint32_t node) : m_impl(std::make_unique<Impl>(remote, node)) {}
FrameStream::~FrameStream() = default;

int FrameStream::FileDescriptor() const {
    return m_impl->wake.FileDescriptor();
}
void FrameStream::Acknowledge() {
    m_impl->wake.Clear();
}
bool FrameStream::HasNewFrame() const {
    return m_impl->hasNewFrame;
}
bool FrameStream::IsLost() const {
    return m_impl->IsLost();
}
FrameExtent FrameStream::Size() const {
    return m_impl->Size();
}
Areas FrameStream::TakeFrame() {
    return m_impl->TakeFrame();
}
bool FrameStream::Copy(const Area& part, std::uint32_t* target) const {
    return m_impl->Copy(part, target);
}

}  // namespace kestrum::media
