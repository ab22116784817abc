// The files kept in a package: attachments, and the index as chapters beside them. A change is written where nobody
// looks yet and then switched over by one small write, so that at every moment either the old or the new set is whole.
#pragma once

#include <functional>

#include "media/package/PackageMap.h"

namespace kestrum::media {

/// Room for a set behind the media. Its first header lies within one sector.
struct TailRoom {
    std::uint64_t position = 0;
    /// Where the Void ends that covers the room; 0 at the end of the file.
    std::uint64_t voidEnd = 0;
};

/// Gives room for a number of bytes.
using ReserveTail = std::function<TailRoom(std::uint64_t bytes)>;

/// Applies `changes` to the files of the package; the others, those with names unknown to this version included, stay.
/// On the disk when it returns. Throws kDamaged if the present files are, and changes nothing then.
void ReplaceFiles(IStorage& storage, const StoredFiles& changes, const ReserveTail& reserveTail);

/// The same for a package that no recorder has open: room behind the media is used again. `map` is what ReadMap finds.
void ReplaceFilesOfClosedPackage(IStorage& storage, const PackageMap& map, const StoredFiles& changes);
void ReplaceFilesOfClosedPackage(IStorage& storage, const StoredFiles& changes);

/// Puts the files of `source` into `target`, which has none, as they are: unknown ones keep all that is said of them.
void CopyFiles(IStorage& source, const PackageMap& sourceMap, IStorage& target);

/// Content of all files by name, the journal included. Throws kDamaged.
StoredFiles LoadAttachedFiles(IStorage& storage, const PackageMap& map);

}  // namespace kestrum::media
