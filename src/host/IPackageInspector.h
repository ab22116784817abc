// What is wrong with a package as a file, for the commands that tell a person: reads, never writes, and answers for any
// file at all. Not a part of the Host: the rules of the system never ask it.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "host/String.h"

namespace kestrum::host {

/// What lies under a name. Only a Package can be looked into; the others are told and left alone.
enum class FileKind {
    Package = 0,
    Missing = 1,
    Folder = 2,
    NoFile = 3,  ///< a pipe, a device or the like
    NoPermission = 4,
    Unreadable = 5,  ///< the system could not read it: `reason` says why
    EmptyFile = 6,
    Foreign = 7,          ///< no Matroska file at all
    ForeignMatroska = 8,  ///< a Matroska file that is none of ours, or that another program wrote anew
};

enum class PackageState {
    Sound = 0,
    Interrupted = 1,  ///< not finished, or its end is torn: a recovery makes it whole
    Recording = 2,    ///< a living recorder holds it: wait
    Damaged = 3,
    Foreign = 4,
    Missing = 5,
};

enum class DamageKind {
    Front = 0,         ///< the parts in front of the media cannot be told from each other
    StoredFiles = 1,   ///< their check sum is wrong
    KeyFrameList = 2,  ///< unreadable; a recovery writes it anew
    Media = 3,         ///< what plays from beginMs to endMs is not what was recorded
    CutOff = 4,        ///< the file ends at beginMs of the endMs that it should have
};

struct PackageDamage {
    DamageKind kind = DamageKind::Media;
    std::int32_t beginMs = 0;
    std::int32_t endMs = 0;
    std::int64_t bytes = 0;
};

/// An index entry as other players of the package show it.
struct PackageChapter {
    std::int32_t ms = 0;
    String title;
};

struct PackageInspection {
    FileKind kind = FileKind::Missing;
    String reason;  ///< the system's sentence where there is one
    PackageState state = PackageState::Missing;
    std::int32_t formatVersion = 0;  ///< major times 256 plus minor
    bool holdsMedia = false;
    bool hasProject = false;
    bool entriesWait = false;       ///< entries of an interrupted recording that no project file has taken yet
    std::int32_t lengthMs = 0;      ///< as a recovery would leave it
    std::int32_t headLengthMs = 0;  ///< what the file says of itself
    std::vector<std::int32_t> keyFrames;
    std::vector<PackageChapter> chapters;
    std::vector<PackageDamage> damages;
    bool cancelled = false;
};

class IPackageInspector {
  public:
    virtual ~IPackageInspector() = default;

    /// Looks at the file; changes no byte of it. With `everything` all media are read, which may take minutes: events
    /// are pumped (re-enters) and `onPercent` is told 0 to 100. Never throws; an inspection that could not be made
    /// answers FileKind::Unreadable with a reason.
    virtual PackageInspection Inspect(const String& package, bool everything,
                                      std::function<void(std::int32_t)> onPercent) = 0;
    /// Ends a running Inspect early; its answer says `cancelled`.
    virtual void Cancel() = 0;
};

}  // namespace kestrum::host
