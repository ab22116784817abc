// The index of a project file in the words that the media worker reads.
#pragma once

#include <optional>
#include <string>

namespace kestrum::adapters {

/// The entries of the project file `path`, one a line: pos, recdate, title and url with a TAB between, where backslash,
/// TAB, LF and CR are written \\ \t \n \r. Nothing if the file cannot be read.
std::optional<std::string> ReadProjectIndex(const std::string& path);

}  // namespace kestrum::adapters
