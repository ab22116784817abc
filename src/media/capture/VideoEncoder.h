// H.264 for a screen: every picture comes out of the call that puts it in, and a key frame is made exactly when asked
// for. Decides who writes a picture: x264 the key frames and those of which much changed, our own writer (h264/) the
// others, which cost it next to nothing. x264 cannot refer to a picture that it did not write, so after small pictures
// a big change is a key frame, whether or not one was asked for.
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
    /// Pictures of which little changed are written by our own writer. A camera's change everywhere.
    bool smallPictures = true;
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
    /// Encodes a picture whose macroblocks are those of the last call but for the marked ones. If `key` a key frame; it
    /// can become one without that. Throws CaptureError.
    EncodedPicture Encode(const I420Picture& picture, const ChangeMap& changes, bool key);

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
