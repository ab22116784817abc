// What a conversion to MP4 is asked for. Positions are ms on the package's time line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrum::media {

/// An index entry as a conversion needs it: a key frame there, and a chapter of that name.
struct ConvertEntry {
    std::int64_t pos = 0;
    std::string title;
};

/// Where the webcam picture goes, in pixels of the movie; all zero is nowhere.
struct CameraArea {
    int width = 0;
    int height = 0;
    int top = 0;
    int left = 0;
};

struct ConvertRequest {
    std::string package;
    std::string output;
    /// Size of the movie; 0 x 0 keeps the package's.
    int width = 0;
    int height = 0;
    int videoKbps = 0;  ///< 0: constant quality, and a copy where nothing has to change
    int audioKbps = 0;  ///< for sound that has to be encoded; 0: the converter's own
    /// Bytes that the movie may have; past them the conversion ends with nothing written. 0 is no limit.
    std::int64_t sizeLimit = 0;
    CameraArea camera;
    /// Ascending; entries without a place in the media (inserted files) are not in it.
    std::vector<ConvertEntry> entries;
    /// False: `entries` come from the package's chapters.
    bool entriesGiven = false;
};

enum class ConvertOutcome {
    kFinished,   ///< the movie is whole, under its name
    kStopped,    ///< as asked; nothing is left
    kSizeLimit,  ///< the movie would be too large; nothing is left
};

}  // namespace kestrum::media
