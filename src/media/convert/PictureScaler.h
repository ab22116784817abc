// Pictures of any kind brought to one size, in the form that the movie's encoder takes (4:2:0).
#pragma once

#include "media/convert/AvHandles.h"

namespace kestrum::media {

class PictureScaler {
  public:
    /// Even sides, at least 2.
    PictureScaler(int width, int height) : m_width(width), m_height(height) {}

    /// The whole picture, stretched where its proportions differ.
    AvHandle<AVFrame> Stretch(const AVFrame& picture);
    /// The middle of the picture, as much as has the proportions of the size: nothing is stretched, nothing left free.
    AvHandle<AVFrame> Fill(const AVFrame& picture);

  private:
    int m_width;
    int m_height;
    AvHandle<SwsContext> m_scaler;
};

}  // namespace kestrum::media
