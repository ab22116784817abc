#include "adapters/linux/ModeChange.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <vector>

#include "adapters/linux/OutputModes.h"

namespace kestrum::platform {
namespace {

using Resources = XReply<xcb_randr_get_screen_resources_current_reply_t>;

constexpr double kMmPerInch = 25.4;
constexpr double kPixelsPerInch = 96;

/// One picture controller: where it stands and what it shows.
struct Crtc {
    xcb_randr_crtc_t id = 0;
    std::int32_t x = 0, y = 0, width = 0, height = 0;
    xcb_randr_mode_t mode = 0;
    std::uint16_t rotation = XCB_RANDR_ROTATION_ROTATE_0;
    std::vector<xcb_randr_output_t> outputs;
};

/// Holds off every other program while several requests change the screen.
class ServerGrab {
  public:
    explicit ServerGrab(X11Connection& display) : m_display(display) { xcb_grab_server(display.Get()); }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;
    ~ServerGrab() {
        xcb_ungrab_server(m_display.Get());
        m_display.Flush();
    }

  private:
    X11Connection& m_display;
};

std::vector<Crtc> ActiveCrtcs(X11Connection& display, const Resources& resources) {
    std::vector<Crtc> crtcs;
    const auto* ids = xcb_randr_get_screen_resources_current_crtcs(resources.get());
    for (int i = 0; i < xcb_randr_get_screen_resources_current_crtcs_length(resources.get()); ++i) {
        const XReply<xcb_randr_get_crtc_info_reply_t> info(xcb_randr_get_crtc_info_reply(
            display.Get(), xcb_randr_get_crtc_info(display.Get(), ids[i], XCB_CURRENT_TIME), nullptr));
        if (!info || info->mode == XCB_NONE) continue;
        const auto* outputs = xcb_randr_get_crtc_info_outputs(info.get());
        crtcs.push_back({ids[i],
                         info->x,
                         info->y,
                         info->width,
                         info->height,
                         info->mode,
                         info->rotation,
                         {outputs, outputs + xcb_randr_get_crtc_info_outputs_length(info.get())}});
    }
    return crtcs;
}

/// The mode with the size, as near to the rate in force as there is.
std::optional<OutputMode> FindMode(const OutputModes& modes, std::int32_t width, std::int32_t height) {
    const std::int32_t rate = modes.inForce ? modes.inForce->rate : 0;
    const auto distance = [rate](const OutputMode& mode) { return std::abs(mode.rate - rate); };
    std::optional<OutputMode> best;
    for (const OutputMode& mode : modes.all) {
        if (mode.width != width || mode.height != height) continue;
        if (!best || distance(mode) < distance(*best)) best = mode;
    }
    return best;
}

bool Configure(X11Connection& display, const Crtc& crtc, xcb_timestamp_t time) {
    const XReply<xcb_randr_set_crtc_config_reply_t> reply(xcb_randr_set_crtc_config_reply(
        display.Get(),
        xcb_randr_set_crtc_config(display.Get(), crtc.id, XCB_CURRENT_TIME, time, static_cast<std::int16_t>(crtc.x),
                                  static_cast<std::int16_t>(crtc.y), crtc.mode, crtc.rotation,
                                  crtc.mode == XCB_NONE ? 0 : static_cast<std::uint32_t>(crtc.outputs.size()),
                                  crtc.outputs.data()),
        nullptr));
    return reply && reply->status == XCB_RANDR_SET_CONFIG_SUCCESS;
}

void TurnOff(X11Connection& display, Crtc crtc, xcb_timestamp_t time) {
    crtc.x = crtc.y = 0;
    crtc.mode = XCB_NONE;
    Configure(display, crtc, time);
}

bool SetScreenSize(X11Connection& display, std::int32_t width, std::int32_t height) {
    const auto mm = [](std::int32_t pixels) {
        return static_cast<std::uint32_t>(std::lround(pixels / kPixelsPerInch * kMmPerInch));
    };
    const auto cookie =
        xcb_randr_set_screen_size_checked(display.Get(), display.Root(), static_cast<std::uint16_t>(width),
                                          static_cast<std::uint16_t>(height), mm(width), mm(height));
    const XReply<xcb_generic_error_t> error(xcb_request_check(display.Get(), cookie));
    return !error;
}

/// Brings all controllers to their new places. What would stick out of a smaller screen is turned off meanwhile.
bool Apply(X11Connection& display, const std::vector<Crtc>& before, const std::vector<Crtc>& after,
           xcb_timestamp_t time) {
    std::int32_t width = 0, height = 0;
    for (const Crtc& crtc : after) {
        width = std::max(width, crtc.x + crtc.width);
        height = std::max(height, crtc.y + crtc.height);
    }
    for (const Crtc& crtc : before) {
        if (crtc.x + crtc.width > width || crtc.y + crtc.height > height) TurnOff(display, crtc, time);
    }
    if (!SetScreenSize(display, width, height)) return false;
    return std::all_of(after.begin(), after.end(), [&](const Crtc& crtc) { return Configure(display, crtc, time); });
}

/// The layout with the new mode in place.
std::vector<Crtc> Rearranged(std::vector<Crtc> crtcs, std::size_t changed, const OutputMode& mode) {
    const Crtc old = crtcs[changed];
    for (Crtc& crtc : crtcs) {
        if (crtc.x >= old.x + old.width) crtc.x += mode.width - old.width;
        if (crtc.y >= old.y + old.height) crtc.y += mode.height - old.height;
    }
    crtcs[changed].mode = mode.id;
    crtcs[changed].width = mode.width;
    crtcs[changed].height = mode.height;
    return crtcs;
}

}  // namespace

bool ChangeOutputMode(X11Connection& display, xcb_randr_output_t output, std::int32_t width, std::int32_t height) {
    const ServerGrab grab(display);
    const Resources resources(xcb_randr_get_screen_resources_current_reply(
        display.Get(), xcb_randr_get_screen_resources_current(display.Get(), display.Root()), nullptr));
    if (!resources) return false;
    const std::vector<Crtc> before = ActiveCrtcs(display, resources);
    const auto driving = std::find_if(before.begin(), before.end(), [output](const Crtc& crtc) {
        return std::find(crtc.outputs.begin(), crtc.outputs.end(), output) != crtc.outputs.end();
    });
    if (driving == before.end()) return false;
    const auto mode = FindMode(ReadOutputModes(display, output), width, height);
    if (!mode) return false;
    const auto after = Rearranged(before, static_cast<std::size_t>(driving - before.begin()), *mode);
    if (Apply(display, before, after, resources->config_timestamp)) return true;
    Apply(display, after, before, resources->config_timestamp);
    return false;
}

}  // namespace kestrum::platform
