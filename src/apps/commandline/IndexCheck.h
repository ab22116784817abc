// Whether the index of a lecture fits its recording: each entry against the key frames, the length, its neighbours, and
// the chapters of the package, which are a second copy of the index.
#pragma once

#include <optional>
#include <set>
#include <vector>

#include "apps/commandline/Finding.h"
#include "host/IPackageInspector.h"

namespace kestrum::app {

/// An entry as the project file has it.
struct IndexEntry {
    String pos;  ///< the text in the file
    String title;
    String date;
    String url;

    bool operator==(const IndexEntry&) const = default;
    /// ms; nullopt for a text that is no number.
    std::optional<std::int64_t> Position() const;
};

/// What the index is compared with.
struct Recording {
    std::set<std::int64_t> keyFrames;
    std::int64_t lengthMs = 0;
    std::vector<host::PackageChapter> chapters;  ///< empty: no second copy to compare with
};

/// A change that loses nothing and lets the rules of opening find the entry sound.
struct IndexMend {
    std::vector<IndexEntry> entries;  ///< in the order they should have
    bool changed = false;
};

struct IndexReport {
    std::vector<Finding> findings;
    IndexMend mend;
};

/// Compares. `notedMs` is the duration in the project file, nullopt if it cannot be read.
IndexReport CheckIndex(const std::vector<IndexEntry>& entries, std::optional<std::int64_t> notedMs,
                       const Recording& recording);

/// "mm:ss.fff" as the program shows positions.
String PositionText(std::int64_t ms);

}  // namespace kestrum::app
