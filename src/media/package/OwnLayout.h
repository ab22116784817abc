// Brings a package that another program edited (a title, a track's name, one more attachment) back into the layout that
// can be changed in place. Such programs move what lies in front of the media and leave the media where they are.
#pragma once

#include "media/package/PackageMap.h"

namespace kestrum::media {

/// Writes `source` into the empty `target`: head and tracks at their places, media copied, all attachments kept. Throws
/// kDamaged if the media are not where they belong.
void CopyIntoOwnLayout(IStorage& source, const PackageMap& map, IStorage& target);

}  // namespace kestrum::media
