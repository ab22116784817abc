#include "recording/LecturerPlace.h"

#include "support/modMonitor.h"

namespace kestrum::recording {

namespace {

constexpr std::int32_t kMargin = 8;

host::Rect At(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height) {
    return {left, top, left + width, top + height};
}

/// A monitor other than the recorded one.
std::optional<host::Rect> Other(const Context& c, const host::Rect& recorded) {
    for (const host::MonitorHandle monitor : c.host.monitors.Handles()) {
        const auto record = c.host.monitors.MonitorRecord(monitor);
        if (record && *record != recorded) return record;
    }
    return std::nullopt;
}

/// At the top, in the middle: there a speaker's view shows nothing that is worked with.
std::optional<host::Rect> OnOtherMonitor(const Context& c, const host::Rect& recorded, std::int32_t width,
                                         std::int32_t height) {
    const auto area = Other(c, recorded);
    if (!area || area->right - area->left < width) return std::nullopt;
    return At(area->left + (area->right - area->left - width) / 2, area->top + kMargin, width, height);
}

std::optional<host::Rect> BesideRegion(const host::Rect& monitor, const host::Rect& region, std::int32_t width,
                                       std::int32_t height) {
    const std::int32_t high = height + 2 * kMargin, wide = width + 2 * kMargin;
    const std::int32_t middle = monitor.left + (monitor.right - monitor.left - width) / 2;
    if (region.top - monitor.top >= high) return At(middle, monitor.top + kMargin, width, height);
    if (monitor.bottom - region.bottom >= high) return At(middle, region.bottom + kMargin, width, height);
    if (region.left - monitor.left >= wide) return At(monitor.left + kMargin, monitor.top + kMargin, width, height);
    if (monitor.right - region.right >= wide) return At(region.right + kMargin, monitor.top + kMargin, width, height);
    return std::nullopt;
}

}  // namespace

std::optional<host::Rect> LecturerPlace(const Context& c, std::int32_t width, std::int32_t height) {
    const display::State& d = c.display;
    const auto monitor = c.host.monitors.MonitorRecord(d.g_Monitor);
    if (!monitor) return std::nullopt;
    if (const auto place = OnOtherMonitor(c, *monitor, width, height)) return place;
    const host::Rect region{d.g_CaptureLeft, d.g_CaptureTop, d.g_CaptureRight + 1, d.g_CaptureBottom + 1};
    return BesideRegion(*monitor, modMonitor::PhysicalToLogicalRect(c, region), width, height);
}

}  // namespace kestrum::recording
