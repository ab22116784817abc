// A package turned into an MP4 movie. A track that needs no change is copied: the pictures when size and bitrate are
// the recording's and each index entry lies on a key frame, the sound when it is AAC. Everything else is encoded once.
#pragma once

#include <cstdint>
#include <functional>

#include "media/convert/ConvertRequest.h"

namespace kestrum::media {

struct ConvertCallbacks {
    /// The position reached in ms, non-decreasing; called for each packet.
    std::function<void(std::int64_t)> onPosition;
    /// True asks for the end; asked before each packet and before the movie gets its name.
    std::function<bool()> stopRequested;
};

/// Runs on the caller's thread. Throws media::Error or std::bad_alloc; whatever happens, a file under the output's name
/// is a whole movie, and no other file is left.
ConvertOutcome ConvertToMp4(const ConvertRequest& request, const ConvertCallbacks& callbacks);

}  // namespace kestrum::media
