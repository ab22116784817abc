// The sound quality of a lecture: one for all of its media, so what is there decides; without media, the preference.
#pragma once

#include "devices/Context.h"

namespace kestrum::devices {

/// A lecture is at hand, unpacked into the scratch folder.
bool HasLecture(const Context& c);

/// The lecture at hand holds media, so its quality cannot be chosen any more.
bool AudioQualityIsFixed(const Context& c);

/// kbit/s as text: that of the media if it is fixed, else the stored preference ("32" if there is none).
String AudioBitrate(const Context& c);

}  // namespace kestrum::devices
