// Takes a package out of the encrypted state: the same package with plain blocks takes its place.
#pragma once

#include <string>

#include "media/legacy/FileCopy.h"

namespace kestrum::media {

/// Decrypts the package at `path`, of any format version. Stored files, positions and lengths stay; an interrupted
/// recording is recovered on the way. The new file is made beside the old one and takes its place when it is on the
/// disk: a failure or a stop leaves the old one as it was. False, and nothing done, if it is not encrypted. Throws
/// media::Error: kLocked while it is recorded, kDamaged without a key.
bool DecryptPackage(const std::string& path, const Watch& watch);

}  // namespace kestrum::media
