// The pictures of covered windows. A window that is never part of a recorded picture covers what a recording is to
// show: while this object lives the display keeps the picture of every window, covered or not, so that a recorder finds
// there what lies below. Has to be made before the covering window appears; what the screen shows does not change.
#pragma once

namespace kestrum::qt {

class CoveredPictures {
  public:
    CoveredPictures();
    CoveredPictures(const CoveredPictures&) = delete;
    CoveredPictures& operator=(const CoveredPictures&) = delete;
    ~CoveredPictures();
};

}  // namespace kestrum::qt
