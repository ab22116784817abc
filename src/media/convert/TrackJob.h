// One track of a conversion on its way from the package into the movie.
#pragma once

#include <cstdint>

#include "media/convert/AvHandles.h"

namespace kestrum::media {

class TrackJob {
  public:
    virtual ~TrackJob() = default;
    /// Takes the next packet of the package's track.
    virtual void Take(AVPacket& packet) = 0;
    /// No packet follows: hands on what is held back. `lengthMs` is the length of the movie.
    virtual void Finish(std::int64_t lengthMs) = 0;
};

}  // namespace kestrum::media
