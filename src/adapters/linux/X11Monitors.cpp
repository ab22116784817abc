#include "adapters/linux/X11Monitors.h"

#include <xcb/randr.h>

#include <algorithm>
#include <cstdlib>

#include "adapters/linux/ModeChange.h"

namespace kestrum::platform {
namespace {

constexpr std::int32_t kUsualPixelsPerInch = 96;

bool Holds(const host::Rect& rect, host::Point point) {
    return point.x >= rect.left && point.x < rect.right && point.y >= rect.top && point.y < rect.bottom;
}

}  // namespace

X11Monitors::X11Monitors(X11Connection& display) : m_display(display) {
    if (!m_display.IsOpen()) return;
    const auto* extension = xcb_get_extension_data(m_display.Get(), &xcb_randr_id);
    if (!extension || !extension->present) return;
    const XReply<xcb_randr_query_version_reply_t> version(
        xcb_randr_query_version_reply(m_display.Get(), xcb_randr_query_version(m_display.Get(), 1, 5), nullptr));
    m_hasRandr = version && (version->major_version > 1 || version->minor_version >= 5);
}

std::vector<host::MonitorHandle> X11Monitors::Handles() {
    std::vector<host::MonitorHandle> handles;
    for (const Monitor& monitor : List()) handles.push_back(monitor.handle);
    return handles;
}

std::vector<X11Monitors::Monitor> X11Monitors::List() {
    std::vector<Monitor> monitors;
    if (!m_display.IsOpen()) return monitors;
    if (m_hasRandr) {
        const XReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
            m_display.Get(), xcb_randr_get_monitors(m_display.Get(), m_display.Root(), 1), nullptr));
        if (!reply) return monitors;
        for (auto at = xcb_randr_get_monitors_monitors_iterator(reply.get()); at.rem > 0;
             xcb_randr_monitor_info_next(&at)) {
            const auto& info = *at.data;
            const auto* outputs = xcb_randr_monitor_info_outputs(at.data);
            monitors.push_back({info.name,
                                {info.x, info.y, info.x + info.width, info.y + info.height},
                                info.primary != 0,
                                xcb_randr_monitor_info_outputs_length(at.data) > 0 ? outputs[0] : 0});
        }
    }
    if (monitors.empty()) {
        const xcb_screen_t& screen = *m_display.Screen();
        monitors.push_back(
            {m_display.Atom("screen"), {0, 0, screen.width_in_pixels, screen.height_in_pixels}, true, 0});
    }
    return monitors;
}

std::optional<X11Monitors::Monitor> X11Monitors::Find(host::MonitorHandle monitor) {
    const std::vector<Monitor> monitors = List();
    const auto found = std::find_if(monitors.begin(), monitors.end(), [monitor](const Monitor& one) {
        return monitor == 0 ? one.primary : one.handle == monitor;
    });
    if (found != monitors.end()) return *found;
    if (monitor == 0 && !monitors.empty()) return monitors.front();
    return std::nullopt;
}

std::optional<host::MonitorHandle> X11Monitors::MonitorFromPoint(host::Point point) {
    for (const Monitor& monitor : List()) {
        if (Holds(monitor.rect, point)) return monitor.handle;
    }
    return std::nullopt;
}

std::optional<host::Rect> X11Monitors::MonitorRecord(host::MonitorHandle monitor) {
    const auto found = Find(monitor);
    if (!found) return std::nullopt;
    return found->rect;
}

String X11Monitors::MonitorName(host::MonitorHandle monitor) {
    const auto found = Find(monitor);
    return found ? host::FromUtf8(m_display.AtomName(static_cast<xcb_atom_t>(found->handle))) : String();
}

OutputModes X11Monitors::ModesOf(const Monitor& monitor) {
    return monitor.output == 0 ? OutputModes() : ReadOutputModes(m_display, monitor.output);
}

host::DisplayMode X11Monitors::AsMode(const OutputMode& mode) {
    return {mode.width, mode.height, BitsPerPixel(), mode.rate};
}

/// Where no output tells, the size of the monitor is its one mode.
host::DisplayMode X11Monitors::OnlyMode(const Monitor& monitor) {
    const host::Rect& rect = monitor.rect;
    return {rect.right - rect.left, rect.bottom - rect.top, BitsPerPixel(), 0};
}

std::optional<host::DisplayMode> X11Monitors::CurrentMode(host::MonitorHandle monitor) {
    const auto found = Find(monitor);
    if (!found) return std::nullopt;
    const host::DisplayMode byPlace = OnlyMode(*found);
    const auto inForce = ModesOf(*found).inForce;
    if (!inForce) return byPlace;
    // An output may be a part of a larger monitor, or be scaled: the desktop's size is what is seen.
    return host::DisplayMode{byPlace.width, byPlace.height, byPlace.bitsPerPixel, inForce->rate};
}

std::optional<host::DisplayMode> X11Monitors::EnumerateMode(host::MonitorHandle monitor, std::int32_t index) {
    const auto found = Find(monitor);
    if (!found || index < 0) return std::nullopt;
    const auto modes = ModesOf(*found).all;
    if (modes.empty() && index == 0) return OnlyMode(*found);
    if (static_cast<std::size_t>(index) >= modes.size()) return std::nullopt;
    return AsMode(modes[static_cast<std::size_t>(index)]);
}

bool X11Monitors::ChangeMode(host::MonitorHandle monitor, std::int32_t width, std::int32_t height) {
    const auto found = Find(monitor);
    if (!found) return false;
    const bool isSame = found->rect.right - found->rect.left == width && found->rect.bottom - found->rect.top == height;
    return isSame || (found->output != 0 && ChangeOutputMode(m_display, found->output, width, height));
}

std::optional<host::Point> X11Monitors::LogicalToPhysical(host::MonitorHandle monitor, host::Point point) {
    if (!Find(monitor)) return std::nullopt;
    return point;
}

host::Point X11Monitors::PrimaryDeviceSize() {
    const auto found = Find(0);
    if (!found) return {};
    return {found->rect.right - found->rect.left, found->rect.bottom - found->rect.top};
}

std::int32_t X11Monitors::PixelsPerInchX() {
    if (!m_display.IsOpen()) return kUsualPixelsPerInch;
    const std::string resources = "\n" + m_display.Property(m_display.Root(), "RESOURCE_MANAGER");
    const std::string key = "\nXft.dpi:";
    const std::size_t at = resources.find(key);
    if (at == std::string::npos) return kUsualPixelsPerInch;
    const long value = std::strtol(resources.c_str() + at + key.size(), nullptr, 10);
    return value > 0 ? static_cast<std::int32_t>(value) : kUsualPixelsPerInch;
}

std::int32_t X11Monitors::BitsPerPixel() {
    if (!m_display.IsOpen()) return 0;
    const xcb_setup_t* setup = xcb_get_setup(m_display.Get());
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0; xcb_format_next(&format)) {
        if (format.data->depth == m_display.Screen()->root_depth) return format.data->bits_per_pixel;
    }
    return m_display.Screen()->root_depth;
}

}  // namespace kestrum::platform
