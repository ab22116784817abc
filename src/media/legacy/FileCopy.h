// What both conversions share: a source that stays as it is, copied with progress until it is done or told to stop.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "media/package/Package.h"
#include "media/package/PackageMap.h"
#include "media/package/Storage.h"

namespace kestrum::media {

/// How far a conversion is, and whether it shall end. A stopped one throws kIo and leaves nothing behind.
struct Watch {
    Progress progress = [](int) {};
    Cancel cancel = [] { return false; };
};

/// Tells the percentage when it grows; throws if the work shall stop.
class WatchedPart {
  public:
    /// The part of the whole work from `firstPercent` to `lastPercent`, of `size` units.
    WatchedPart(const Watch& watch, int firstPercent, int lastPercent, std::uint64_t size);
    void Reached(std::uint64_t unit);

  private:
    const Watch& m_watch;
    int m_first;
    int m_last;
    std::uint64_t m_size;
    int m_told = -1;
};

/// A package of ours, of any format version.
struct SourcePackage {
    std::unique_ptr<FileStorage> storage;
    PackageMap map;
};
/// Opened for writing it is locked until the object goes; opened for reading it may lie where nothing can be locked.
/// Throws kLocked while another program records or writes it, kNotAPackage, kDamaged.
SourcePackage OpenSource(const std::string& path, FileStorage::Access access);

/// Copies all bytes.
void CopyBytes(IStorage& source, IStorage& target, WatchedPart part);

}  // namespace kestrum::media
