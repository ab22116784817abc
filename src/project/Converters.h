// The external converters of media made by older versions.
#pragma once

#include <vector>

#include "support/Context.h"

namespace kestrum::project {

/// Runs a program of the install folder in the modal process window and waits for its end (re-enters).
void RunConverter(const support::Context& c, StringView program, const std::vector<String>& arguments);

/// Converts media that is encrypted. False if it still is afterwards, or cannot be opened (which is told). Re-enters.
bool EnsureDecrypted(const support::Context& c, const String& media);

}  // namespace kestrum::project
