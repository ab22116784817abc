// A picture drawn into another: the presenter's photo into the frame that the player keeps for it.
#pragma once

#include <string>

namespace kestrum::media {

/// Replaces the content of picture file `target` (PNG or JPEG by its name) by `source`, any picture, scaled to fit, in
/// the middle of the target's size; what stays free is transparent in a PNG, else white. Throws media::Error and leaves
/// the target as it was if either cannot be read.
void DrawFit(const std::string& target, const std::string& source);

}  // namespace kestrum::media
