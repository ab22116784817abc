// Whether the microphone of a running recording is heard, and what the volume dialogs share: probe, switches.
#pragma once

#include <vector>

#include "devices/Context.h"

namespace kestrum::modVolume {

/// The detection's constants: more than 50 ticks of 200 ms at a level of 5 or less.
inline constexpr std::int32_t kSilenceLimit = 50;
inline constexpr std::int32_t kVolumeThreshold = 5;

/// One tick of the detection; true while it goes on. `reset` starts anew. After more than `limit` ticks at `threshold`
/// or less it shows frmVolMsg, without waiting, and ends; it also ends when sound is heard.
bool CheckLowVolume(const devices::Context& c, bool reset, std::int32_t limit, std::int32_t threshold);

/// The device obeys: sets the next step (9 at 10) and `step` again. False if it refuses.
bool ProbeVolume(const devices::Context& c, std::int32_t step);

/// Names of the record line's switches, at most two.
std::vector<String> MixerSwitches(StringView mixerText);

/// Shows a box for each switch with its name and state.
void FillMixerSwitches(const devices::Context& c, StringView mixerText, const std::vector<ui::CheckBox*>& boxes);

}  // namespace kestrum::modVolume
