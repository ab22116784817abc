// An office out of a sandbox (Flatpak, Snap): its files and its pipe cannot be reached from outside, so it cannot be
// driven. Whoever has no other one is told so instead of hearing that there is none.
#pragma once

#include <filesystem>

#include "host/String.h"

namespace kestrum::impress {

/// "Flatpak", "Snap" or "": the sandbox in which an office is installed below `root`, for everybody or for the user
/// whose folder is `home`.
String SandboxWithOffice(const std::filesystem::path& root, const std::filesystem::path& home);

/// What a user is told where the office that can be driven is missing, while `sandbox` (as above) may hold another.
String MissingOfficeSentence(const String& sandbox);

}  // namespace kestrum::impress
