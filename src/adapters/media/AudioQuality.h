// The sound quality that a project names (32, 64 or 96) as a bit rate of the sound track, and back. The project's
// numbers are those of an older codec; AAC needs a little more for the same speech.
#pragma once

#include <cstdint>
#include <string>

namespace kestrum::adapters {

/// Bit rate in kbit/s for the quality in a project file; that of the lowest quality if the file cannot be read.
std::int32_t KbpsOfProject(const std::string& projectFile);
/// The quality whose bit rate this is; 0 stays 0, unknown.
std::int32_t QualityOfKbps(std::int32_t kbps);

}  // namespace kestrum::adapters
