// The values that the project store keeps between calls.
#pragma once

#include <cstdint>

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
    /// A scratch folder with an index that could be stored nowhere else; empty: none.
    String folderToKeep;
    /// Key-frame positions last read, as numbers between blanks with a blank in front and behind; empty: not read yet.
    String keyFrameCache;
};

}  // namespace kestrum::project
