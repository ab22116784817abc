// What the device dialogs and the recording share.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum::devices {

struct State {
    /// Answer of a dialog: the caller sets 2 (cancelled) before it opens one, the dialog 1.
    std::int32_t g_DialogResult = 0;
    /// Last audio level of the encoder, 0 to 100.
    std::int32_t g_AudioLevel = 0;
    /// Ticks of low volume so far.
    std::int32_t silenceCounter = 0;
    /// What to tell before the recording that is about to start; empty for nothing, and once it was told.
    String adviceLine;
    /// Another program holds the devices.
    bool deviceLocked = false;
};

}  // namespace kestrum::devices
