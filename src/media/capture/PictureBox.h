// A decoded picture of any kind and size, drawn whole into a picture of a given size, with black bars where the
// proportions differ.
#pragma once

#include "media/capture/Picture.h"
#include "media/convert/AvHandles.h"

namespace kestrum::media {

class PictureBox {
  public:
    /// Leaves the picture black if the scaler does not know the frame's kind.
    void Draw(const AVFrame& frame, BgraPicture& picture);

  private:
    AvHandle<SwsContext> m_scaler;
};

}  // namespace kestrum::media
