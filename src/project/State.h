// The values that the project store keeps between calls.
#pragma once

#include <cstdint>
#include <string>

#include "host/String.h"
#include "project/CProjectFile.h"
#include "support/Context.h"

namespace kestrum::project {

struct State {
    explicit State(const support::Context& c) : g_Project(c) {}

    /// The one project file of the open project.
    CProjectFile g_Project;
    /// Number of index entries at the last opening.
    std::int32_t itemCount = 0;
    /// The project file in the package as this program last read or wrote it; empty: not known, or a recording of this
    /// program is at work on it.
    std::string storedProject;
    /// A scratch folder with an index that could be stored nowhere else; empty: none.
    String folderToKeep;
    /// Key-frame positions last read, as numbers between blanks with a blank in front and behind; empty: not read yet.
    String keyFrameCache;
};

}  // namespace kestrum::project
