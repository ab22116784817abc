// Reads the description of the tracks of a package back.
#pragma once

#include "media/package/PackageMap.h"

namespace kestrum::media {

void ReadTracks(IStorage& storage, const ebml::Element& tracks, PackageMap& map);
/// The nominal bit rate of the audio track.
void ReadTags(IStorage& storage, const ebml::Element& tags, PackageMap& map);

}  // namespace kestrum::media
