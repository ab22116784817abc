// H.264 for a screen: every picture comes out of the call that puts it in, an unchanged one costs little, a key frame
// is made exactly when asked for. A small class of its own, so that pictures with small changes can get a writer of
// their own without anybody noticing.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "media/capture/Picture.h"
#include "media/package/PackageTypes.h"

namespace kestrum::media {

struct VideoEncoderSettings {
    int width = 0;             ///< even
    int height = 0;            ///< even
    int framesPerSecond = 10;  ///< highest rate that will come; bounds the bit rate
    /// Carry the parameter sets in every key frame: for a package whose header has other ones.
    bool headersInKeyFrames = false;
};

struct EncodedPicture {
    bool isKey = false;
    std::span<const std::uint8_t> sample;  ///< length-prefixed NAL units, valid until the next call
};

class VideoEncoder {
  public:
    /// Throws CaptureError if the encoder refuses the size.
    explicit VideoEncoder(const VideoEncoderSettings& settings);
    ~VideoEncoder();
    VideoEncoder(const VideoEncoder&) = delete;
    VideoEncoder& operator=(const VideoEncoder&) = delete;

    /// Parameter sets as the package's header wants them (ISO/IEC 14496-15).
    const Bytes& AvcC() const;
    /// Encodes a picture whose macroblocks are those of the last call but for the marked ones. Throws CaptureError.
    EncodedPicture Encode(const I420Picture& picture, const ChangeMap& changes, bool key);

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
