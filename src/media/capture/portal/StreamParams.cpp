#include "media/capture/portal/StreamParams.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

namespace kestrum::media {
namespace {

constexpr std::uint32_t kMostFramesPerSecond = 30, kMostSide = 16384;
// The reader holds two, the writer fills one.
constexpr std::int32_t kUsualBuffers = 6, kFewestBuffers = 4, kMostBuffers = 16;
constexpr std::int32_t kMostDamages = 16;

void Choice(spa_pod_builder& b, std::uint32_t key, std::uint32_t kind, spa_pod_frame& frame) {
    spa_pod_builder_prop(&b, key, 0);
    spa_pod_builder_push_choice(&b, &frame, kind, 0);
}

void AddFormats(spa_pod_builder& b) {
    spa_pod_frame choice;
    Choice(b, SPA_FORMAT_VIDEO_format, SPA_CHOICE_Enum, choice);
    // The first one is the default.
    for (const auto format : {SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRA,
                              SPA_VIDEO_FORMAT_RGBx, SPA_VIDEO_FORMAT_RGBA}) {
        spa_pod_builder_id(&b, format);
    }
    spa_pod_builder_pop(&b, &choice);
}

void AddSizes(spa_pod_builder& b) {
    spa_pod_frame choice;
    Choice(b, SPA_FORMAT_VIDEO_size, SPA_CHOICE_Range, choice);
    spa_pod_builder_rectangle(&b, 1920, 1080);
    spa_pod_builder_rectangle(&b, 1, 1);
    spa_pod_builder_rectangle(&b, kMostSide, kMostSide);
    spa_pod_builder_pop(&b, &choice);
}

/// `usual`, `least` and `most` pictures a second.
void AddRate(spa_pod_builder& b, std::uint32_t key, std::uint32_t usual, std::uint32_t least, std::uint32_t most) {
    spa_pod_frame choice;
    Choice(b, key, SPA_CHOICE_Range, choice);
    spa_pod_builder_fraction(&b, usual, 1);
    spa_pod_builder_fraction(&b, least, 1);
    spa_pod_builder_fraction(&b, most, 1);
    spa_pod_builder_pop(&b, &choice);
}

const spa_pod* Format(spa_pod_builder& b, bool isSlowedDown) {
    spa_pod_frame object;
    spa_pod_builder_push_object(&b, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_prop(&b, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&b, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&b, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&b, SPA_MEDIA_SUBTYPE_raw);
    AddFormats(b);
    AddSizes(b);
    AddRate(b, SPA_FORMAT_VIDEO_framerate, 0, 0, 1000);  // 0: whenever something changes
    if (isSlowedDown) {
        AddRate(b, SPA_FORMAT_VIDEO_maxFramerate, kMostFramesPerSecond, 1, kMostFramesPerSecond);
    }
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&b, &object));
}

const spa_pod* Buffers(spa_pod_builder& b) {
    spa_pod_frame object, choice;
    spa_pod_builder_push_object(&b, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    Choice(b, SPA_PARAM_BUFFERS_buffers, SPA_CHOICE_Range, choice);
    for (const auto count : {kUsualBuffers, kFewestBuffers, kMostBuffers}) spa_pod_builder_int(&b, count);
    spa_pod_builder_pop(&b, &choice);
    Choice(b, SPA_PARAM_BUFFERS_dataType, SPA_CHOICE_Flags, choice);
    spa_pod_builder_int(&b, 1 << SPA_DATA_MemFd | 1 << SPA_DATA_MemPtr);
    spa_pod_builder_pop(&b, &choice);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&b, &object));
}

/// At most so many records of `bytes`.
const spa_pod* Meta(spa_pod_builder& b, spa_meta_type type, std::size_t bytes, std::int32_t most) {
    const auto size = static_cast<std::int32_t>(bytes);
    spa_pod_frame object, choice;
    spa_pod_builder_push_object(&b, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
    spa_pod_builder_prop(&b, SPA_PARAM_META_type, 0);
    spa_pod_builder_id(&b, type);
    Choice(b, SPA_PARAM_META_size, SPA_CHOICE_Range, choice);
    for (const auto count : {most, 1, most}) spa_pod_builder_int(&b, count * size);
    spa_pod_builder_pop(&b, &choice);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&b, &object));
}

}  // namespace

template <typename Build>
void StreamParams::Add(Build build) {
    spa_pod_builder b{};
    spa_pod_builder_init(&b, m_memory.data() + m_used, static_cast<std::uint32_t>(m_memory.size() - m_used));
    m_list.push_back(build(b));
    m_used += b.state.offset;
}

void StreamParams::OfferFormats() {
    Add([](spa_pod_builder& b) { return Format(b, true); });
    Add([](spa_pod_builder& b) { return Format(b, false); });
}

void StreamParams::OfferBuffers() {
    Add(Buffers);
    Add([](spa_pod_builder& b) { return Meta(b, SPA_META_Header, sizeof(spa_meta_header), 1); });
    Add([](spa_pod_builder& b) { return Meta(b, SPA_META_VideoTransform, sizeof(spa_meta_videotransform), 1); });
    Add([](spa_pod_builder& b) { return Meta(b, SPA_META_VideoDamage, sizeof(spa_meta_region), kMostDamages); });
}

}  // namespace kestrum::media
