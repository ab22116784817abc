#include "support/modMonitor.h"

#include "support/Numbers.h"
#include "support/modMsgBox.h"

namespace kestrum::modMonitor {
namespace {

/// From this version of the system on, a monitor's record is scaled by its pixels per inch.
constexpr std::int32_t kScaledRecords = 63;
constexpr double kTwipsPerInch = 1440.0;

bool RecordsAreScaled(const support::Context& c) {
    return c.support.g_OsVersion >= kScaledRecords;
}

host::Point SizeOf(const host::Rect& rect) {
    return {rect.right - rect.left, rect.bottom - rect.top};
}

host::Point PhysicalSize(const support::Context& c, host::MonitorHandle monitor) {
    if (RecordsAreScaled(c) && c.support.g_HostMode == u"PPT") {
        const host::DisplayMode mode = c.host.monitors.CurrentMode(monitor).value_or(host::DisplayMode{});
        return {mode.width, mode.height};
    }
    if (monitor == 0) return c.host.monitors.PrimaryDeviceSize();
    return SizeOf(c.host.monitors.MonitorRecord(monitor).value_or(host::Rect{}));
}

std::int32_t InUnit(std::int32_t pixels, std::int32_t unit, std::int32_t pixelsPerInch) {
    return unit == kTwips ? ToInt32(Div(pixels * kTwipsPerInch, pixelsPerInch)) : pixels;
}

host::Point ToPhysical(const support::Context& c, host::MonitorHandle monitor, host::Point logical) {
    const std::optional<host::Point> physical = c.host.monitors.LogicalToPhysical(monitor, logical);
    if (!physical) modMsgBox::MsgBox(c, u"LogicalToPhysicalPointForPerMonitorDPI fail");
    return physical.value_or(logical);
}

std::int32_t Scaled(std::int32_t value, std::int32_t logicalSize, std::int32_t physicalSize) {
    return ToInt32(static_cast<double>(value) * logicalSize / physicalSize);
}

}  // namespace

std::int32_t GetMonitorWidth(const support::Context& c, host::MonitorHandle monitor, std::int32_t unit) {
    return InUnit(PhysicalSize(c, monitor).x, unit, c.host.monitors.PixelsPerInchX());
}

std::int32_t GetMonitorHeight(const support::Context& c, host::MonitorHandle monitor, std::int32_t unit) {
    return InUnit(PhysicalSize(c, monitor).y, unit, c.host.monitors.PixelsPerInchY());
}

host::Rect GetMonitorRect(const support::Context& c, host::MonitorHandle monitor) {
    const host::Rect record = c.host.monitors.MonitorRecord(monitor).value_or(host::Rect{});
    if (!RecordsAreScaled(c)) return record;
    const host::Point topLeft = ToPhysical(c, monitor, {record.left, record.top});
    const host::Point bottomRight = ToPhysical(c, monitor, {record.right, record.bottom});
    return {topLeft.x, topLeft.y, bottomRight.x, bottomRight.y};
}

host::Rect PhysicalToLogicalRect(const support::Context& c, const host::Rect& physical) {
    if (!RecordsAreScaled(c)) return physical;
    const auto monitor = c.host.monitors.MonitorFromPoint({physical.left, physical.top});
    if (!monitor) return physical;
    const auto record = c.host.monitors.MonitorRecord(*monitor);
    const auto mode = c.host.monitors.CurrentMode(*monitor);
    if (!record || !mode || mode->width == 0 || mode->height == 0) return physical;
    const host::Point logical = SizeOf(*record);
    return {Scaled(physical.left, logical.x, mode->width), Scaled(physical.top, logical.y, mode->height),
            Scaled(physical.right, logical.x, mode->width), Scaled(physical.bottom, logical.y, mode->height)};
}

}  // namespace kestrum::modMonitor
