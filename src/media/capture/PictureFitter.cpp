#include "media/capture/PictureFitter.h"

extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

#include "media/capture/CaptureError.h"

namespace kestrum::media {

void PictureFitter::Deleter::operator()(SwsContext* context) const {
    sws_freeContext(context);
}

PictureFitter::PictureFitter(int fromWidth, int fromHeight, int toWidth, int toHeight)
    : m_target(FitInto({0, 0, fromWidth, fromHeight}, {0, 0, toWidth, toHeight})),
      m_scaler(sws_getContext(fromWidth, fromHeight, AV_PIX_FMT_BGR0, m_target.width, m_target.height,
                              AV_PIX_FMT_YUV420P, SWS_BICUBIC, nullptr, nullptr, nullptr)) {
    if (!m_scaler) throw CaptureError(CaptureErrorKind::kEncoder, "The picture cannot be scaled to the package's.");
    const int* bt709 = sws_getCoefficients(SWS_CS_ITU709);
    constexpr int kFullRange = 1, kLimitedRange = 0, kOne = 1 << 16;
    sws_setColorspaceDetails(m_scaler.get(), bt709, kFullRange, bt709, kLimitedRange, 0, kOne, kOne);
}

void PictureFitter::Draw(const BgraPicture& from, I420Picture& to) {
    const auto* pixels = reinterpret_cast<const std::uint8_t*>(from.pixels.data());
    const std::uint8_t* const source[] = {pixels};
    const int sourceStride[] = {from.width * 4};
    const std::size_t luma = static_cast<std::size_t>(m_target.y) * to.lumaStride + m_target.x;
    const std::size_t chroma = static_cast<std::size_t>(m_target.y / 2) * to.chromaStride + m_target.x / 2;
    std::uint8_t* const target[] = {to.luma.data() + luma, to.cb.data() + chroma, to.cr.data() + chroma};
    const int targetStride[] = {to.lumaStride, to.chromaStride, to.chromaStride};
    sws_scale(m_scaler.get(), source, sourceStride, 0, from.height, target, targetStride);
}

}  // namespace kestrum::media
