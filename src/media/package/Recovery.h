// Brings a package whose recorder died back to a whole one. Each step leaves a package from which the next attempt
// comes to the same end.
#pragma once

#include <vector>

#include "media/package/FileSet.h"
#include "media/package/MediaScan.h"
#include "media/package/PackageMap.h"

namespace kestrum::media {

/// Recovers the package if a recorder died in it; nullopt if not. The storage is open for writing and locked. Throws
/// kDamaged, and changes nothing, if the head cannot be read.
/// `map` is what ReadMap finds.
std::optional<RecoveryReport> RecoverIfInterrupted(IStorage& storage, const PackageMap& map);
std::optional<RecoveryReport> RecoverIfInterrupted(IStorage& storage);

/// The media as a recovery would leave them, without changing a byte: of a whole package what its head says.
struct MediaPreview {
    std::int64_t lengthMs = 0;
    std::vector<CueEntry> cues;
    bool changed = false;  ///< there is more than the head knows
};
MediaPreview PreviewMedia(IStorage& storage, const PackageMap& map);
/// The files as a recovery would leave them: journal and length merged, the journal itself left out.
StoredFiles PreviewFiles(IStorage& storage, const PackageMap& map);

/// Writes the list of key frames at `position`, names it and the length in the head, and hides the list that the head
/// named before.
void FinishMedia(IStorage& storage, std::uint64_t position, const std::vector<CueEntry>& cues, std::int64_t lengthMs);

/// Merges the journal into the stored project file, and forgets it. The media are finished.
void FinishIndex(IStorage& storage, std::int64_t lengthMs, RecoveryReport& report);

/// Merges an index journal that waits for a project file into the one that comes now: adds what it does not know.
/// Returns the changes to store instead.
StoredFiles MergePendingJournal(const StoredFiles& changes, const StoredFiles& present, std::int64_t lengthMs);

}  // namespace kestrum::media
