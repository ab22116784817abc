// The command line of the subcommand `convert-mp4`.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "media/convert/ConvertRequest.h"

namespace kestrum::media {

/// One paragraph for the help text.
extern const char* const kConvertMp4Usage;

/// `PACKAGE OUT.mp4` with options in any place; nothing if the line is not one of ours. Reads the file of `--index`,
/// one entry a line in the form of Journal.h; throws media::Error if it cannot be read.
std::optional<ConvertRequest> ParseConvertMp4(const std::vector<std::string>& arguments);

}  // namespace kestrum::media
