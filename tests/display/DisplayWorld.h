// A scripted desk for the display room: monitors with modes, forms without a screen.
#pragma once

#include <vector>

#include "adapters/sim/World.h"
#include "display/Context.h"
#include "display/modRegion.h"

namespace kestrum::test {

struct DisplayWorld {
    DisplayWorld() {
        support.g_HostMode = u"PPT";
        support.g_OsVersion = 63;
        support.applicationTitle = u"Kestrum";
        display.g_Monitor = 0;
    }

    /// One monitor of `current` that has these modes at the present depth and rate.
    void SetModes(modRegion::Size current, const std::vector<modRegion::Size>& sizes) {
        world.monitors.SetSingle(current.width, current.height);
        auto& modes = world.monitors.all.front().modes;
        modes.clear();
        for (const modRegion::Size size : sizes) modes.push_back({size.width, size.height, 32, 60});
    }

    modRegion::Size Recommended() const { return {display.g_RcmdResWidth, display.g_RcmdResHeight}; }
    modRegion::Size Largest() const { return {display.g_MaxResWidth, display.g_MaxResHeight}; }
    modRegion::Size InForce() {
        const auto mode = world.monitors.CurrentMode(0);
        return {mode->width, mode->height};
    }

    sim::World world;
    support::State support;
    ui::Forms forms{world.presenter, world.loop};
    support::Context base{world.host(), forms, support};
    project::State project{base};
    display::State display;
    display::Context c{{base, project}, display};
};

}  // namespace kestrum::test
