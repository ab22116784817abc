// The fake package: what the media library keeps in a `.ktr` file, written as a simple text form into the file system
// in memory, so that copies, moves and deletions of the file behave as they do with a real one. Not the product's
// format.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrum::sim {

struct Package {
    std::int32_t lengthMs = 0;
    std::int32_t width = 0, height = 0;
    std::vector<std::int32_t> keyFrames;
    /// "project", "cursor", "photo", "index"; one that is missing was stored as absent.
    std::map<std::string, std::string> stored;
    /// UTF-8 of the journal text; kept until it is merged.
    std::string journal;
    /// A recording into it was never finished.
    bool torn = false;
    /// The content does not verify and cannot be recovered.
    bool damaged = false;
    std::int32_t ectState = 0;
    std::int32_t formatVersion = 8 * 256;
    std::int32_t videoAttribute = 0;
    std::int32_t audioBitrate = 32;
    std::int32_t optimizeLevel = 0;

    /// Adds the journal's entries that the stored project file lacks to it and forgets the journal, as the library does
    /// when a recording ends or is recovered.
    void MergeJournal();

    std::string ToBytes() const;
    /// None for bytes that are no package of ours.
    static std::optional<Package> FromBytes(const std::string& bytes);
};

}  // namespace kestrum::sim
