#include "media/convert/AvHandles.h"

#include <cerrno>
#include <new>

#include "media/package/Error.h"

namespace kestrum::media {

namespace {

ErrorKind KindOf(int result) {
    switch (AVUNERROR(result)) {
        case ENOENT:
            return ErrorKind::kMissing;
        case EACCES:
        case EPERM:
        case EROFS:
            return ErrorKind::kNoPermission;
        case ENOSPC:
        case EDQUOT:
            return ErrorKind::kDiskFull;
        default:
            return result == AVERROR_INVALIDDATA ? ErrorKind::kDamaged : ErrorKind::kIo;
    }
}

template <class T>
AvHandle<T> Owned(T* object) {
    if (object == nullptr) throw std::bad_alloc();
    return AvHandle<T>(object);
}

}  // namespace

int CheckAv(int result, const std::string& doing) {
    if (result >= 0) return result;
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    char reason[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(result, reason, sizeof reason);
    throw Error(KindOf(result), "Cannot " + doing + ": " + reason, AVUNERROR(result));
}

AvHandle<AVPacket> NewPacket() {
    return Owned(av_packet_alloc());
}

AvHandle<AVFrame> NewFrame() {
    return Owned(av_frame_alloc());
}

AvHandle<AVFormatContext> OpenInput(const std::string& path) {
    AVFormatContext* opened = nullptr;
    // The scheme keeps a file name with a colon from being read as an address.
    CheckAv(avformat_open_input(&opened, ("file:" + path).c_str(), nullptr, nullptr), "open " + path);
    AvHandle<AVFormatContext> input(opened);
    CheckAv(avformat_find_stream_info(input.get(), nullptr), "read " + path);
    return input;
}

AvHandle<AVCodecContext> OpenDecoder(const AVStream& stream, int threadType) {
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (codec == nullptr)
        throw Error(ErrorKind::kNotAPackage,
                    std::string("Cannot decode ") + avcodec_get_name(stream.codecpar->codec_id) + ".", 0);
    auto decoder = Owned(avcodec_alloc_context3(codec));
    CheckAv(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "set up the decoder");
    decoder->pkt_timebase = stream.time_base;
    decoder->thread_count = 0;
    decoder->thread_type = threadType;
    CheckAv(avcodec_open2(decoder.get(), codec, nullptr), "open the decoder");
    return decoder;
}

}  // namespace kestrum::media
