// Monitors and display modes. A monitor is named by a handle; 0 is the default (primary) monitor.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/String.h"

namespace kestrum::host {

using MonitorHandle = std::uint64_t;

/// Corners in pixels of the desktop; right and bottom lie one beyond the last pixel.
struct Rect {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const Rect&) const = default;
};

struct Point {
    std::int32_t x = 0, y = 0;
    bool operator==(const Point&) const = default;
};

/// One display mode: pixels, colour depth in bits, refresh rate in hertz.
struct DisplayMode {
    std::int32_t width = 0, height = 0, bitsPerPixel = 0, refreshRate = 0;
    bool operator==(const DisplayMode&) const = default;
};

class IMonitors {
  public:
    virtual ~IMonitors() = default;
    /// The monitors that the desktop is spread over, in the system's order; none without a screen.
    virtual std::vector<MonitorHandle> Handles() = 0;
    /// The monitor holding the point, none if it lies outside all.
    virtual std::optional<MonitorHandle> MonitorFromPoint(Point point) = 0;
    /// The monitor's record (logical coordinates); none for an unknown monitor.
    virtual std::optional<Rect> MonitorRecord(MonitorHandle monitor) = 0;
    /// Name of the monitor for people, empty if unknown.
    virtual String MonitorName(MonitorHandle monitor) = 0;
    /// The mode in force; none for an unknown monitor.
    virtual std::optional<DisplayMode> CurrentMode(MonitorHandle monitor) = 0;
    /// Mode number `index` from 0; none ends the enumeration.
    virtual std::optional<DisplayMode> EnumerateMode(MonitorHandle monitor, std::int32_t index) = 0;
    /// Changes width and height of the monitor's mode and keeps it in the user's settings. False if refused.
    virtual bool ChangeMode(MonitorHandle monitor, std::int32_t width, std::int32_t height) = 0;
    /// Physical point of a logical one on a display scaled per monitor; none if the conversion fails.
    virtual std::optional<Point> LogicalToPhysical(MonitorHandle monitor, Point point) = 0;
    /// Size of the primary display as its device reports it.
    virtual Point PrimaryDeviceSize() = 0;
    /// Pixels per inch of the screen.
    virtual std::int32_t PixelsPerInchX() = 0;
    virtual std::int32_t PixelsPerInchY() = 0;
    /// Colour depth of the screen in bits.
    virtual std::int32_t BitsPerPixel() = 0;
};

}  // namespace kestrum::host
