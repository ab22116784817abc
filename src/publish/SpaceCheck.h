// Whether the disk has room for a movie, said before the work starts.
#pragma once

#include <cstdint>

#include "publish/Context.h"

namespace kestrum::publish {

/// A sentence if less is free beside the package than a movie of `kbps` kbit/s for the pictures (0: as recorded) may
/// need; empty if there is room, or if it cannot be told.
String SpaceWarning(const support::Context& c, std::int32_t kbps);

}  // namespace kestrum::publish
