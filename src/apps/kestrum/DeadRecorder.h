// A recorder that was killed leaves its marker behind, which would refuse every command for a minute. The lock that
// each living recorder holds tells at once that it has gone.
#pragma once

#include "support/Context.h"

namespace kestrum::app {

/// Takes the recording marker back if no recorder of this user is alive.
void DisarmMarkerOfDeadRecorder(const support::Context& c);

}  // namespace kestrum::app
