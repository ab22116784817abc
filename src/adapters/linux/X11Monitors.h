// Monitors and their modes over the RandR extension; a display without it is one monitor of one mode. A monitor's
// handle is the atom of its name, so it means the same monitor after a change of the layout.
//
// X keeps a changed mode until the session ends. What lies beyond is the desktop's own setting.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/linux/OutputModes.h"
#include "adapters/linux/X11Connection.h"
#include "host/IMonitors.h"

namespace kestrum::platform {

class X11Monitors : public host::IMonitors {
  public:
    explicit X11Monitors(X11Connection& display);

    std::vector<host::MonitorHandle> Handles() override;
    std::optional<host::MonitorHandle> MonitorFromPoint(host::Point point) override;
    std::optional<host::Rect> MonitorRecord(host::MonitorHandle monitor) override;
    String MonitorName(host::MonitorHandle monitor) override;
    std::optional<host::DisplayMode> CurrentMode(host::MonitorHandle monitor) override;
    std::optional<host::DisplayMode> EnumerateMode(host::MonitorHandle monitor, std::int32_t index) override;
    bool ChangeMode(host::MonitorHandle monitor, std::int32_t width, std::int32_t height) override;
    /// The point itself: X knows one scale only.
    std::optional<host::Point> LogicalToPhysical(host::MonitorHandle monitor, host::Point point) override;
    host::Point PrimaryDeviceSize() override;
    /// What the desktop asks of its programs (the resource Xft.dpi), 96 if it does not.
    std::int32_t PixelsPerInchX() override;
    std::int32_t PixelsPerInchY() override { return PixelsPerInchX(); }
    std::int32_t BitsPerPixel() override;

  private:
    struct Monitor {
        host::MonitorHandle handle = 0;
        host::Rect rect;
        bool primary = false;
        std::uint32_t output = 0;  ///< 0 for a monitor that no output drives
    };

    std::vector<Monitor> List();
    /// Handle 0 is the primary monitor, or the first.
    std::optional<Monitor> Find(host::MonitorHandle monitor);
    OutputModes ModesOf(const Monitor& monitor);
    host::DisplayMode AsMode(const OutputMode& mode);
    host::DisplayMode OnlyMode(const Monitor& monitor);

    X11Connection& m_display;
    bool m_hasRandr = false;
};

}  // namespace kestrum::platform
