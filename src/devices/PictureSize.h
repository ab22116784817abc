// Sizes of the webcam picture as settings, lists and projects write them: "240x180".
#pragma once

#include "host/String.h"

namespace kestrum {

struct PictureSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const PictureSize&) const = default;
};

/// Width and height of a text like "240x180"; a part that is no number is 0.
PictureSize ParsePictureSize(StringView text);

/// The bit rate in kbit/s that a webcam picture of this size is recorded with; empty for a size that is not offered.
StringView VideoBitrateOf(StringView size);

}  // namespace kestrum
