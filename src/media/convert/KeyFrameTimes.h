// The key frames of a movie.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrum::media {

/// Times of the key frames of the first picture track in microseconds, ascending. Reads the whole file. Throws
/// media::Error.
std::vector<std::int64_t> KeyFrameTimes(const std::string& movie);

/// One time a line in seconds, with six decimals and a point.
std::string KeyFrameText(const std::vector<std::int64_t>& microseconds);

}  // namespace kestrum::media
