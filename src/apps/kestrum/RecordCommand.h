// `kestrum record`: a deck opened in Impress, its show recorded, with a person at the keyboard or unattended.
#pragma once

#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Console.h"

namespace kestrum::app {

/// Runs the command on the screen of this session; the exit code. Throws host::Error with a sentence for the user.
int RunRecord(Console& console, const RecordRequest& request);

}  // namespace kestrum::app
