#include "media/capture/PictureBox.h"

#include <algorithm>

namespace kestrum::media {
namespace {

constexpr std::uint32_t kBlack = 0xFF000000;

/// The names of full-range pictures are an older way to say what the frame's range says.
AVPixelFormat PlainFormat(int format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P:
            return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ422P:
            return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ444P:
            return AV_PIX_FMT_YUV444P;
        default:
            return static_cast<AVPixelFormat>(format);
    }
}

bool IsFullRange(const AVFrame& frame) {
    return frame.color_range == AVCOL_RANGE_JPEG || PlainFormat(frame.format) != frame.format;
}

/// The largest area of the frame's proportions in the middle of the picture.
Area FitInto(const AVFrame& frame, const BgraPicture& picture) {
    const auto w = static_cast<std::int64_t>(frame.width), h = static_cast<std::int64_t>(frame.height);
    const bool isWide = w * picture.height > h * picture.width;
    const int width = isWide ? picture.width : std::max<int>(1, static_cast<int>(w * picture.height / h));
    const int height = isWide ? std::max<int>(1, static_cast<int>(h * picture.width / w)) : picture.height;
    return {(picture.width - width) / 2, (picture.height - height) / 2, width, height};
}

}  // namespace

void PictureBox::Draw(const AVFrame& frame, BgraPicture& picture) {
    std::fill(picture.pixels.begin(), picture.pixels.end(), kBlack);
    const Area area = FitInto(frame, picture);
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), frame.width, frame.height, PlainFormat(frame.format),
                                        area.width, area.height, AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr,
                                        nullptr));
    if (!m_scaler) return;
    const int* colours = sws_getCoefficients(SWS_CS_DEFAULT);
    sws_setColorspaceDetails(m_scaler.get(), colours, IsFullRange(frame), colours, 1, 0, 1 << 16, 1 << 16);
    std::uint8_t* planes[] = {reinterpret_cast<std::uint8_t*>(picture.Line(area.y) + area.x), nullptr, nullptr,
                              nullptr};
    const int strides[] = {picture.width * 4, 0, 0, 0};
    sws_scale(m_scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides);
}

}  // namespace kestrum::media
