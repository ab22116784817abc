// A picture track decoded: packets in, pictures with their positions out. A damaged picture is passed over, so that the
// one before stays on screen instead of costing the lecture.
#pragma once

#include <cstdint>
#include <functional>

#include "media/convert/AvHandles.h"

namespace kestrum::media {

class PictureDecoder {
  public:
    enum class Delay {
        kSome,  ///< as many pictures are in work at once as the machine has threads
        kNone,  ///< each picture comes out with its packet
    };
    using TakePicture = std::function<void(AVFrame& picture, std::int64_t pos)>;

    PictureDecoder(const AVStream& source, Delay delay);
    /// Decodes one packet, or with null what is held back; `take` is called for each picture that comes out. Throws
    /// media::Error.
    void Decode(const AVPacket* packet, const TakePicture& take);

  private:
    AVRational m_timeBase;
    AvHandle<AVCodecContext> m_decoder;
};

}  // namespace kestrum::media
