// One track of a conversion on its way from the package into the movie.
#pragma once

#include "media/convert/AvHandles.h"

namespace kestrum::media {

class TrackJob {
  public:
    virtual ~TrackJob() = default;
    /// Takes the next packet of the package's track.
    virtual void Take(AVPacket& packet) = 0;
    /// No packet follows: hands on what is held back.
    virtual void Finish() = 0;
};

}  // namespace kestrum::media
