#include "media/convert/PictureScaler.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace kestrum::media {

namespace {

/// What to take off each of two edges so that `side` becomes `want` at most; even, as 4:2:0 has it.
std::size_t Margin(int side, std::int64_t want) {
    return static_cast<std::size_t>(std::max<std::int64_t>(side - want, 0) / 4 * 2);
}

}  // namespace

AvHandle<AVFrame> PictureScaler::Stretch(const AVFrame& picture) {
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), picture.width, picture.height,
                                        static_cast<AVPixelFormat>(picture.format), m_width, m_height,
                                        AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr, nullptr, nullptr));
    if (!m_scaler) throw std::bad_alloc();
    auto scaled = NewFrame();
    CheckAv(sws_scale_frame(m_scaler.get(), scaled.get(), &picture), "scale a picture");
    return scaled;
}

AvHandle<AVFrame> PictureScaler::Fill(const AVFrame& picture) {
    const std::size_t left = Margin(picture.width, std::int64_t{picture.height} * m_width / m_height);
    const std::size_t top = Margin(picture.height, std::int64_t{picture.width} * m_height / m_width);
    if (left == 0 && top == 0) return Stretch(picture);
    auto middle = NewFrame();
    CheckAv(av_frame_ref(middle.get(), &picture), "keep a picture");
    middle->crop_left = middle->crop_right = left;
    middle->crop_top = middle->crop_bottom = top;
    CheckAv(av_frame_apply_cropping(middle.get(), AV_FRAME_CROP_UNALIGNED), "crop a picture");
    return Stretch(*middle);
}

}  // namespace kestrum::media
