// What goes wrong: step errors in front of the user, and a bounded text file in the work folder.
#pragma once

#include "support/Context.h"

namespace kestrum::modLog {

/// A box with `description`; with a `title`, the text is the current step, ": " and the description. Re-enters.
void ShowStepError(const support::Context& c, const String& description, const String& title);

/// Adds a line to err_log.txt of the work folder. The first line of a run cuts the file to its newest 32768
/// characters. Failures are dropped.
void WriteErrLog(const support::Context& c, const String& line);

}  // namespace kestrum::modLog
