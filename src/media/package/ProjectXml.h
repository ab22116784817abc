// The little that the package knows of a project file: its list of index entries, to mirror it as chapters, and how the
// journal of an interrupted recording goes into it. Everything else in the file stays as it is.
#pragma once

#include <optional>
#include <vector>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

/// A place in the media with a title.
struct ChapterMark {
    std::int64_t ms = 0;
    std::string title;
};

/// The entries that have a place in the media; empty for a file that cannot be read.
std::vector<ChapterMark> ChapterMarksOf(const Bytes& projectFile);

struct MergedProject {
    Bytes projectFile;
    int entries = 0;              ///< entries in the file now
    int entriesWithoutMedia = 0;  ///< journal entries at or beyond the length, left out
};

/// The index becomes the list of the journal, without the entries at or beyond `lengthMs`, and its duration
/// `lengthMs`. nullopt if `projectFile` is no project file.
std::optional<MergedProject> ReplaceIndex(const Bytes& projectFile, const std::vector<JournalEntry>& journal,
                                          std::int64_t lengthMs);
/// The entries of the journal whose position the file does not know are put in by position; the rest as ReplaceIndex.
std::optional<MergedProject> AddToIndex(const Bytes& projectFile, const std::vector<JournalEntry>& journal,
                                        std::int64_t lengthMs);
/// Only the duration is set.
std::optional<MergedProject> SetDuration(const Bytes& projectFile, std::int64_t lengthMs);

/// "mm:ss" or "mm:ss.mmm", with "h:" in front from one hour on.
std::string DurationText(std::int64_t ms);

}  // namespace kestrum::media
