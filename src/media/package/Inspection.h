// What is wrong with a package as a file, told piece by piece and without changing a byte: what kind of file it is,
// whether its parts can be read, and which seconds of the media are not what was recorded. Verification in Package.h
// gives one word; this gives the reasons.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "media/package/Package.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {

/// What lies under a name. Only kPackage can be looked into.
enum class FileKind {
    kPackage = 0,  ///< one of ours, of any format version
    kMissing = 1,
    kFolder = 2,
    kNoFile = 3,  ///< a pipe, a device or the like
    kNoPermission = 4,
    kUnreadable = 5,  ///< the system could not read it
    kEmptyFile = 6,
    kForeign = 7,          ///< anything that is no Matroska file
    kForeignMatroska = 8,  ///< a Matroska file of another program, or one of ours that another program wrote anew
};

enum class DamageKind {
    kFront = 0,         ///< the parts in front of the media cannot be told from each other
    kStoredFiles = 1,   ///< the check sum of the stored files is wrong
    kKeyFrameList = 2,  ///< the list of key frames cannot be read; the media tell it anew
    kMedia = 3,         ///< a piece of the media whose check sum is wrong, or that cannot be read
    kCutOff = 4,        ///< the file ends before the end that its head names
};

struct DamagedPiece {
    DamageKind kind = DamageKind::kMedia;
    std::int64_t beginMs = 0;  ///< of kMedia and kCutOff: what plays from here ...
    std::int64_t endMs = 0;    ///< ... to here is affected
    std::int64_t bytes = 0;    ///< size of the affected piece; of kCutOff 0
};

struct Inspection {
    FileKind kind = FileKind::kMissing;
    std::string reason;  ///< the system's sentence where there is one
    Soundness soundness = Soundness::kMissing;
    int formatVersion = 0;
    bool holdsMedia = false;
    bool hasProject = false;        ///< a project file is stored
    bool entriesWait = false;       ///< a journal is stored, for a project file or a recovery to take it
    std::int64_t lengthMs = 0;      ///< as a recovery would leave it
    std::int64_t headLengthMs = 0;  ///< what the head says
    std::vector<std::int64_t> keyFrames;
    std::vector<ChapterMark> chapters;  ///< the index as other players show it
    std::vector<DamagedPiece> damages;
    bool cancelled = false;
};

enum class Thoroughness {
    kHeadAndTail,  ///< takes no time
    kEverything,   ///< reads all media and compares the check sums
};

/// Looks at the file under `path`. Never throws, never changes a byte.
Inspection Inspect(const std::string& path, Thoroughness thoroughness, const Progress& progress, const Cancel& cancel);

}  // namespace kestrum::media
