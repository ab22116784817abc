// A project folder of generation 6 or 7 (`<presentation>.ksp`) as one package.
#pragma once

#include <string>

#include "media/legacy/FileCopy.h"

namespace kestrum::media {

/// Makes the package `target` from the folder's media.ks, project.ksp, icons/cursor.gif, photo and inteIndex.txt; the
/// folder stays as it is. Media are copied as they are; an interrupted recording is recovered on the way. The package
/// appears when it is whole and on the disk. Throws media::Error with a sentence: kLocked if `target` exists, kDamaged
/// if the media are encrypted.
void ConvertLegacyFolder(const std::string& folder, const std::string& target, const Watch& watch);

}  // namespace kestrum::media
