// The list of key frames at the end of a package (Matroska Cues).
#pragma once

#include <optional>
#include <vector>

#include "media/package/MediaScan.h"

namespace kestrum::media {

/// The element; `entries` must not be empty.
Bytes BuildCues(const std::vector<CueEntry>& entries);
/// The entries ascending; nullopt if the element is damaged.
std::optional<std::vector<CueEntry>> ReadCues(IStorage& storage, const ebml::Element& cues);

}  // namespace kestrum::media
