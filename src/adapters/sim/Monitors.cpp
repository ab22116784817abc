#include "adapters/sim/Monitors.h"

#include <cmath>

namespace kestrum::sim {

namespace {

constexpr host::MonitorHandle kFirstHandle = 65537;

std::int32_t Scaled(std::int32_t value, double factor) {
    return static_cast<std::int32_t>(std::lround(value * factor));
}

}  // namespace

Monitors::Monitors(Transcript& transcript) : m_transcript(transcript) {
    SetSingle(1920, 1080);
}

void Monitors::SetSingle(std::int32_t width, std::int32_t height) {
    all.clear();
    AddRight(width, height);
}

host::MonitorHandle Monitors::AddRight(std::int32_t width, std::int32_t height) {
    Monitor monitor;
    monitor.handle = kFirstHandle + all.size();
    std::int32_t left = all.empty() ? 0 : all.back().rect.right;
    monitor.rect = host::Rect{left, 0, left + width, height};
    monitor.name = u"Monitor " + host::FromUtf8(std::to_string(all.size() + 1));
    monitor.modes = {{width, height, 32, 60}, {1280, 720, 32, 60}, {1024, 768, 32, 60}, {800, 600, 32, 60}};
    all.push_back(monitor);
    return monitor.handle;
}

Monitor* Monitors::Find(host::MonitorHandle handle) {
    if (handle == 0 && !all.empty()) return &all.front();
    for (Monitor& monitor : all) {
        if (monitor.handle == handle) return &monitor;
    }
    return nullptr;
}

host::Rect Monitors::RecordOf(const Monitor& monitor) const {
    const host::Rect& r = monitor.rect;
    double factor = 1.0 / monitor.scale;
    return host::Rect{r.left, r.top, r.left + Scaled(r.right - r.left, factor),
                      r.top + Scaled(r.bottom - r.top, factor)};
}

std::vector<host::MonitorHandle> Monitors::Handles() {
    std::vector<host::MonitorHandle> handles;
    for (const Monitor& monitor : all) handles.push_back(monitor.handle);
    return handles;
}

std::optional<host::MonitorHandle> Monitors::MonitorFromPoint(host::Point point) {
    for (const Monitor& monitor : all) {
        host::Rect r = RecordOf(monitor);
        if (point.x >= r.left && point.x < r.right && point.y >= r.top && point.y < r.bottom) return monitor.handle;
    }
    return std::nullopt;
}

std::optional<host::Rect> Monitors::MonitorRecord(host::MonitorHandle monitor) {
    Monitor* found = Find(monitor);
    if (!found) return std::nullopt;
    return RecordOf(*found);
}

String Monitors::MonitorName(host::MonitorHandle monitor) {
    Monitor* found = Find(monitor);
    return found ? found->name : String();
}

std::optional<host::DisplayMode> Monitors::CurrentMode(host::MonitorHandle monitor) {
    Monitor* found = Find(monitor);
    if (!found || found->hidesMode) return std::nullopt;
    const host::Rect& r = found->rect;
    return host::DisplayMode{r.right - r.left, r.bottom - r.top, bitsPerPixel, 60};
}

std::optional<host::DisplayMode> Monitors::EnumerateMode(host::MonitorHandle monitor, std::int32_t index) {
    Monitor* found = Find(monitor);
    if (!found || index < 0 || index >= static_cast<std::int32_t>(found->modes.size())) return std::nullopt;
    return found->modes[static_cast<std::size_t>(index)];
}

bool Monitors::ChangeMode(host::MonitorHandle monitor, std::int32_t width, std::int32_t height) {
    m_transcript.Add(u"monitors.ChangeMode " + host::FromUtf8(std::to_string(width) + "x" + std::to_string(height)));
    Monitor* found = Find(monitor);
    if (!found || found->refusesChanges) return false;
    found->rect.right = found->rect.left + width;
    found->rect.bottom = found->rect.top + height;
    return true;
}

std::optional<host::Point> Monitors::LogicalToPhysical(host::MonitorHandle monitor, host::Point point) {
    Monitor* found = Find(monitor);
    if (!found || conversionFails) return std::nullopt;
    const host::Rect& r = found->rect;
    return host::Point{r.left + Scaled(point.x - r.left, found->scale), r.top + Scaled(point.y - r.top, found->scale)};
}

host::Point Monitors::PrimaryDeviceSize() {
    if (all.empty()) return host::Point{};
    const host::Rect& r = all.front().rect;
    return host::Point{r.right - r.left, r.bottom - r.top};
}

}  // namespace kestrum::sim
