// Moves index positions onto key frames of the movie, where a player can begin to show a picture at once.
#pragma once

#include <cstdint>
#include <vector>

#include "host/String.h"
#include "project/IndexItems.h"

namespace kestrum::publish {

/// The key frames in ms from a text with one time in seconds a line; the first blank line ends it. Error 13 for a line
/// that is no number, 6 for a time beyond 32 bits of milliseconds.
std::vector<std::int32_t> ReadKeyFrames(StringView text);

/// The key frame for `pos`: the next one if it is at most 200 ms away, else the one before; the last one beyond the
/// last pair. 0 with fewer than two key frames.
std::int32_t SnapToKeyFrame(std::int32_t pos, const std::vector<std::int32_t>& frames);

/// Snaps every entry but the first. Error 13 for a position that is no number.
void SnapIndex(IndexItems& index, const std::vector<std::int32_t>& frames);

}  // namespace kestrum::publish
