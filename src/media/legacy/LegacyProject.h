// A project file of generation 6 or 7 as one of today.
#pragma once

#include <optional>
#include <string>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

struct UpgradedProject {
    Bytes projectFile;
    std::string photo;  ///< file name of the presenter's photo, without any folder
};

/// The same project with the major version 8: "7.1.2" becomes "8.1.2". What older files lack is added with its default;
/// everything else stays as it is. `lengthMs` is the length of the media, for a file that tells none. nullopt if
/// `projectFile` is no project file of generation 6 or 7.
std::optional<UpgradedProject> UpgradeProject(const Bytes& projectFile, std::int64_t lengthMs);

}  // namespace kestrum::media
