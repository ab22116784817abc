// A screen whose size is not the package's: scaled into its frame with black bars. Only recordings appended after a
// change of the screen's size pay for it.
#pragma once

#include <memory>

#include "media/capture/Picture.h"

struct SwsContext;

namespace kestrum::media {

class PictureFitter {
  public:
    /// Throws CaptureError if the scaler refuses the sizes.
    PictureFitter(int fromWidth, int fromHeight, int toWidth, int toHeight);

    /// Draws the whole picture; the bars stay as `to` was made, black.
    void Draw(const BgraPicture& from, I420Picture& to);

  private:
    struct Deleter {
        void operator()(SwsContext* context) const;
    };
    Area m_target;
    std::unique_ptr<SwsContext, Deleter> m_scaler;
};

}  // namespace kestrum::media
