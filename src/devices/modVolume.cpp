#include "devices/modVolume.h"

#include <algorithm>

#include "devices/frmVolMsg.h"
#include "support/modGlobal.h"

namespace kestrum::modVolume {
namespace {

constexpr std::int32_t kHighestStep = 10;

}  // namespace

bool CheckLowVolume(const devices::Context& c, bool reset, std::int32_t limit, std::int32_t threshold) {
    std::int32_t& counter = c.devices.silenceCounter;
    if (reset) {
        counter = 0;
        return true;
    }
    ++counter;
    if (counter > limit) {
        counter = 0;
        c.forms.Get<frmVolMsg>(c).Show();
        return false;
    }
    if (c.devices.g_AudioLevel > threshold) {
        counter = 0;
        return false;
    }
    return true;
}

bool ProbeVolume(const devices::Context& c, std::int32_t step) {
    const std::int32_t next = step == kHighestStep ? kHighestStep - 1 : step + 1;
    if (c.host.ksLib.SetVolumeScale(next) == 0) return false;
    c.host.ksLib.SetVolumeScale(step);
    return true;
}

std::vector<String> MixerSwitches(StringView mixerText) {
    const StringView names = mixerText.substr(0, mixerText.find(u'\0'));
    if (names.empty()) return {};
    std::vector<String> switches = modGlobal::Split(names, u";");
    switches.resize(std::min<std::size_t>(switches.size(), 2));
    return switches;
}

void FillMixerSwitches(const devices::Context& c, StringView mixerText, const std::vector<ui::CheckBox*>& boxes) {
    const std::vector<String> switches = MixerSwitches(mixerText);
    for (std::size_t i = 0; i < switches.size() && i < boxes.size(); ++i) {
        boxes[i]->SetVisible(true);
        boxes[i]->SetCaption(switches[i]);
        boxes[i]->SetValue(c.host.ksLib.MixerGet(static_cast<std::int32_t>(i)));
    }
}

}  // namespace kestrum::modVolume
