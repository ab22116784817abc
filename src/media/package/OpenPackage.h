// Opening a package for writing: who may, what is made or recovered first, and the one change to the head that a first
// recording makes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "media/package/PackageMap.h"
#include "media/package/Storage.h"

namespace kestrum::media {

/// Opens and locks `path`; makes an empty package where there is none. Throws kLocked while another one holds it.
std::unique_ptr<IStorage> OpenOrCreate(const std::string& path);

/// Throws kNotAPackage for what is none of ours or of another format version, and kDamaged if its head cannot be read;
/// then recovers an interrupted package and takes off what a cut-short change left at the end.
std::optional<RecoveryReport> PrepareForWriting(IStorage& storage);

/// Writes the tracks into a package without media.
void WriteTracks(IStorage& storage, const TrackConfigs& tracks);

}  // namespace kestrum::media
