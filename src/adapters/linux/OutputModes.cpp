#include "adapters/linux/OutputModes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrum::platform {
namespace {

constexpr std::uint16_t kOnItsSide = XCB_RANDR_ROTATION_ROTATE_90 | XCB_RANDR_ROTATION_ROTATE_270;

OutputMode Describe(const xcb_randr_mode_info_t& mode, bool onItsSide) {
    OutputMode described{mode.id, mode.width, mode.height, RefreshRate(mode)};
    if (onItsSide) std::swap(described.width, described.height);
    return described;
}

}  // namespace

OutputModes ReadOutputModes(X11Connection& display, xcb_randr_output_t output) {
    auto* c = display.Get();
    const XReply<xcb_randr_get_screen_resources_current_reply_t> resources(xcb_randr_get_screen_resources_current_reply(
        c, xcb_randr_get_screen_resources_current(c, display.Root()), nullptr));
    const XReply<xcb_randr_get_output_info_reply_t> info(
        xcb_randr_get_output_info_reply(c, xcb_randr_get_output_info(c, output, XCB_CURRENT_TIME), nullptr));
    if (!resources || !info) return {};
    const XReply<xcb_randr_get_crtc_info_reply_t> crtc(
        info->crtc == XCB_NONE
            ? nullptr
            : xcb_randr_get_crtc_info_reply(c, xcb_randr_get_crtc_info(c, info->crtc, XCB_CURRENT_TIME), nullptr));
    const bool onItsSide = crtc && (crtc->rotation & kOnItsSide) != 0;

    OutputModes modes;
    const auto* known = xcb_randr_get_screen_resources_current_modes(resources.get());
    const auto* end = known + xcb_randr_get_screen_resources_current_modes_length(resources.get());
    const auto* own = xcb_randr_get_output_info_modes(info.get());
    for (int i = 0; i < xcb_randr_get_output_info_modes_length(info.get()); ++i) {
        const auto* mode = std::find_if(known, end, [&](const auto& one) { return one.id == own[i]; });
        if (mode == end) continue;
        modes.all.push_back(Describe(*mode, onItsSide));
        if (crtc && crtc->mode == mode->id) modes.inForce = modes.all.back();
    }
    return modes;
}

std::int32_t RefreshRate(const xcb_randr_mode_info_t& mode) {
    const double total = static_cast<double>(mode.htotal) * mode.vtotal;
    return total > 0 ? static_cast<std::int32_t>(std::lround(mode.dot_clock / total)) : 0;
}

}  // namespace kestrum::platform
