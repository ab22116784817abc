#include "devices/ShowMonitor.h"

#include <algorithm>

#include "support/modConfig.h"

namespace kestrum::devices {
namespace {

constexpr StringView kSection = u"configure", kKey = u"showMonitor";

}  // namespace

void KeepShowMonitor(const Context& c, host::ISlideShowSettings& shows, std::int32_t number) {
    const auto monitors = c.host.monitors.Handles();
    const bool isOne = number > 0 && number <= std::ssize(monitors);
    modConfig::SaveSetting(
        c, kSection, kKey,
        isOne ? c.host.monitors.MonitorName(monitors[static_cast<std::size_t>(number - 1)]) : String());
    if (shows.ShowMonitor() != number) shows.SetShowMonitor(number);
}

void ApplyShowMonitor(const Context& c, host::ISlideShowSettings& shows) {
    const String name = modConfig::GetSetting(c, kSection, kKey, u"");
    if (name.empty() || shows.ShowMonitor() != 0) return;
    const auto monitors = c.host.monitors.Handles();
    const auto found = std::find_if(monitors.begin(), monitors.end(), [&](host::MonitorHandle monitor) {
        return c.host.monitors.MonitorName(monitor) == name;
    });
    if (found != monitors.end()) shows.SetShowMonitor(static_cast<std::int32_t>(found - monitors.begin()) + 1);
}

}  // namespace kestrum::devices
