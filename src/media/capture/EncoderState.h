// States of a recording as the worker tells them; the numbers are part of the protocol.
#pragma once

#include <cstdint>

namespace kestrum::media {

enum class EncoderState : std::int32_t {
    kIdle = 0,      ///< nothing is recorded
    kRunning = 1,   ///< a recording runs
    kStopping = 2,  ///< the package is being finished
    kFileError = 3,
    kVideoOverflow = 5,
    kAudioOverflow = 6,
    kScreenError = 8,  ///< the display went away
    kOutOfMemory = 9,
    kLargestSize = 10,  ///< the package has reached its largest size; media go on being written until the stop
    kResolutionChanged = 12,
    kDiskFull = 13,  ///< less than 100 MB free; media go on being written while there is room
};

}  // namespace kestrum::media
