// Monitors with their modes; the first one is the primary monitor and the one that handle 0 means. A monitor may be
// scaled: its record is then smaller than its mode.
#pragma once

#include "adapters/sim/Transcript.h"
#include "host/IMonitors.h"

namespace kestrum::sim {

struct Monitor {
    host::MonitorHandle handle = 0;
    /// Physical rectangle.
    host::Rect rect;
    String name;
    std::vector<host::DisplayMode> modes;
    /// Physical pixels per logical pixel; the monitor record is the physical rectangle divided by it.
    double scale = 1.0;
    bool refusesChanges = false;
    /// Its mode in force cannot be read.
    bool hidesMode = false;
};

class Monitors : public host::IMonitors {
  public:
    explicit Monitors(Transcript& transcript);

    std::vector<host::MonitorHandle> Handles() override;
    std::optional<host::MonitorHandle> MonitorFromPoint(host::Point point) override;
    std::optional<host::Rect> MonitorRecord(host::MonitorHandle monitor) override;
    String MonitorName(host::MonitorHandle monitor) override;
    std::optional<host::DisplayMode> CurrentMode(host::MonitorHandle monitor) override;
    std::optional<host::DisplayMode> EnumerateMode(host::MonitorHandle monitor, std::int32_t index) override;
    bool ChangeMode(host::MonitorHandle monitor, std::int32_t width, std::int32_t height) override;
    std::optional<host::Point> LogicalToPhysical(host::MonitorHandle monitor, host::Point point) override;
    host::Point PrimaryDeviceSize() override;
    std::int32_t PixelsPerInchX() override { return pixelsPerInch; }
    std::int32_t PixelsPerInchY() override { return pixelsPerInch; }
    std::int32_t BitsPerPixel() override { return bitsPerPixel; }

    /// One monitor of this size in place of all.
    void SetSingle(std::int32_t width, std::int32_t height);
    /// A further monitor right of the others; gives its handle.
    host::MonitorHandle AddRight(std::int32_t width, std::int32_t height);
    Monitor* Find(host::MonitorHandle handle);

    std::vector<Monitor> all;
    std::int32_t pixelsPerInch = 96;
    std::int32_t bitsPerPixel = 32;
    bool conversionFails = false;

  private:
    host::Rect RecordOf(const Monitor& monitor) const;

    Transcript& m_transcript;
};

}  // namespace kestrum::sim
