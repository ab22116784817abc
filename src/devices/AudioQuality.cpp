#include "devices/AudioQuality.h"

#include "project/Paths.h"
#include "project/StoredProject.h"
#include "support/Numbers.h"
#include "support/modConfig.h"

namespace kestrum::devices {

bool HasLecture(const Context& c) {
    return !c.support.workFolder.empty();
}

bool AudioQualityIsFixed(const Context& c) {
    return HasLecture(c) && project::HoldsMedia(c);
}

String AudioBitrate(const Context& c) {
    if (AudioQualityIsFixed(c)) return ToText(c.host.ksLib.GetAudioBitrate(project::NarrowPackage(c)));
    return modConfig::GetSetting(c, u"configure", u"audioBitrate", u"32");
}

}  // namespace kestrum::devices
