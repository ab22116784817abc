// What lies where in a package, found from its head and its tail alone: the time it takes does not depend on the size
// of the media. Reads any Matroska file without harm; what is not one of ours comes out with format version 0.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "media/package/Ebml.h"
#include "media/package/Layout.h"
#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// A file kept in the package.
struct AttachedFile {
    std::string name;
    ebml::Element element;
    ebml::Element data;
};

struct PackageMap {
    int formatVersion = 0;  ///< 0: not one of ours
    std::uint64_t fileSize = 0;
    Head head;
    /// Everything lies where Layout.h says; false after another program edited the package: it can be read, and is
    /// laid out anew before it is written.
    bool ownLayout = false;
    bool headReadable = false;  ///< the elements in front of the media could be read to their end
    std::optional<TrackConfigs> tracks;
    bool encrypted = false;               ///< a track says that its blocks are; see legacy/BlockCipher.h
    Bytes encryptionKey;                  ///< empty if the package does not hold it
    std::vector<ebml::Element> fileSets;  ///< the Attachments elements that count
    std::vector<AttachedFile> files;
    std::uint64_t mediaBegin = 0;
    std::optional<ebml::Element> cues;                ///< the list of key frames that the head names
    std::optional<std::vector<CueEntry>> cueEntries;  ///< what it says, ascending; none if it is damaged
    /// The end of the last element that the head names: all behind it up to the file's end is left over.
    std::uint64_t referencedEnd = 0;
    bool tailWhole = false;  ///< nothing lies behind the media's list of key frames but whole elements without media

    const AttachedFile* Find(const std::string& name) const;
    bool IsOurs() const { return formatVersion != 0; }
    /// A recorder has not finished it.
    bool IsInterrupted() const;
    bool HoldsMedia() const { return cues.has_value() || !tailWhole; }
};

PackageMap ReadMap(IStorage& storage);

/// Whether the file sets are undamaged.
bool FilesAreSound(IStorage& storage, const PackageMap& map);
/// The content of a file; throws kDamaged if it cannot be read or is beyond any sensible size.
Bytes ReadAttachedFile(IStorage& storage, const AttachedFile& file);

}  // namespace kestrum::media
