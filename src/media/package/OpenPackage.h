// Opening a package for writing: who may, what is made or recovered first, and the one change to the head that a first
// recording makes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "media/package/PackageMap.h"
#include "media/package/Storage.h"

namespace kestrum::media {

/// A package that is open and locked, and what lies where in it.
struct OpenedPackage {
    std::unique_ptr<IStorage> storage;
    PackageMap map;
};

/// Opens and locks the package at `path`. Throws kLocked while another one holds it, kNotAPackage for what is none of
/// ours or of another format version, kDamaged if its head cannot be read. One that another program edited, so that
/// things lie elsewhere, is copied into our own layout and replaced; all files in it stay.
OpenedPackage OpenExisting(const std::string& path);
/// The same; makes an empty package where there is none.
OpenedPackage OpenOrCreate(const std::string& path);

/// Refuses as OpenExisting does; then recovers an interrupted package and takes off what a cut-short change left at the
/// end. The map follows.
std::optional<RecoveryReport> PrepareForWriting(OpenedPackage& opened);

/// Writes the tracks into a package without media.
void WriteTracks(IStorage& storage, const TrackConfigs& tracks);

}  // namespace kestrum::media
