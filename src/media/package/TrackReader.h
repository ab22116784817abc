// Reads the description of the tracks of a package back.
#pragma once

#include "media/package/PackageMap.h"

namespace kestrum::media {

/// The tag that holds the key of encrypted blocks, in hexadecimal digits.
constexpr const char* kEncryptionKeyTag = "KESTRUM_KEY";

void ReadTracks(IStorage& storage, const ebml::Element& tracks, PackageMap& map);
/// The nominal bit rate of the audio track, the key of encrypted blocks.
void ReadTags(IStorage& storage, const ebml::Element& tags, PackageMap& map);

}  // namespace kestrum::media
