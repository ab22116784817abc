#include "media/convert/DrawFit.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "media/convert/AvHandles.h"
#include "media/package/Error.h"

namespace kestrum::media {

namespace {

struct PictureFormat {
    AVCodecID codec;
    AVPixelFormat pixels;
    bool transparent;
};

PictureFormat FormatOf(const std::string& path) {
    std::string extension = path.substr(std::min(path.find_last_of('.'), path.size()));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    if (extension == ".png") return {AV_CODEC_ID_PNG, AV_PIX_FMT_RGBA, true};
    if (extension == ".jpg" || extension == ".jpeg") return {AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ444P, false};
    throw Error(ErrorKind::kBadCall, "Cannot draw into " + path + ": it is no PNG or JPEG file.", 0);
}

AvHandle<AVFrame> ReadPicture(const std::string& path) {
    auto input = OpenInput(path);
    const int stream =
        CheckAv(av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0), "find a picture in " + path);
    auto decoder = OpenDecoder(*input->streams[stream]);
    auto packet = NewPacket();
    auto frame = NewFrame();
    bool flushed = false;
    while (true) {
        const int result = avcodec_receive_frame(decoder.get(), frame.get());
        if (result != AVERROR(EAGAIN)) {
            CheckAv(result, "decode " + path);
            return frame;
        }
        if (flushed) throw Error(ErrorKind::kDamaged, "There is no picture in " + path + ".", 0);
        flushed = av_read_frame(input.get(), packet.get()) < 0;
        CheckAv(avcodec_send_packet(decoder.get(), flushed ? nullptr : packet.get()), "decode " + path);
        av_packet_unref(packet.get());
    }
}

AvHandle<AVFrame> Converted(const AVFrame& picture, AVPixelFormat pixels, int width, int height) {
    AvHandle<SwsContext> scaler(sws_getContext(picture.width, picture.height,
                                               static_cast<AVPixelFormat>(picture.format), width, height, pixels,
                                               SWS_BICUBIC, nullptr, nullptr, nullptr));
    if (!scaler) throw Error(ErrorKind::kDamaged, "Cannot convert a picture of this kind.", 0);
    auto converted = NewFrame();
    CheckAv(sws_scale_frame(scaler.get(), converted.get(), &picture), "scale a picture");
    return converted;
}

AvHandle<AVFrame> Canvas(int width, int height, bool transparent) {
    auto canvas = NewFrame();
    canvas->format = AV_PIX_FMT_RGBA;
    canvas->width = width;
    canvas->height = height;
    CheckAv(av_frame_get_buffer(canvas.get(), 0), "make a picture");
    for (int y = 0; y < height; ++y)
        std::memset(canvas->data[0] + y * canvas->linesize[0], transparent ? 0 : 255,
                    static_cast<std::size_t>(width) * 4);
    return canvas;
}

/// Puts RGBA `picture` into the middle of an opaque or empty RGBA `canvas`.
void PutInMiddle(AVFrame& canvas, const AVFrame& picture, bool transparent) {
    const int left = (canvas.width - picture.width) / 2;
    const int top = (canvas.height - picture.height) / 2;
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t* from = picture.data[0] + y * picture.linesize[0];
        std::uint8_t* to = canvas.data[0] + (top + y) * canvas.linesize[0] + left * 4;
        for (int x = 0; x < picture.width; ++x, from += 4, to += 4) {
            const int alpha = from[3];
            for (int c = 0; c < 3; ++c)
                to[c] =
                    transparent ? from[c] : static_cast<std::uint8_t>((from[c] * alpha + 255 * (255 - alpha)) / 255);
            to[3] = transparent ? from[3] : 255;
        }
    }
}

AvHandle<AVPacket> Encoded(const AVFrame& picture, const PictureFormat& format) {
    const AVCodec* codec = avcodec_find_encoder(format.codec);
    if (codec == nullptr) throw Error(ErrorKind::kIo, "This system's libavcodec cannot write the picture.", 0);
    AvHandle<AVCodecContext> encoder(avcodec_alloc_context3(codec));
    if (!encoder) throw std::bad_alloc();
    encoder->width = picture.width;
    encoder->height = picture.height;
    encoder->pix_fmt = format.pixels;
    encoder->color_range = AVCOL_RANGE_JPEG;
    encoder->time_base = AVRational{1, 25};
    encoder->flags |= AV_CODEC_FLAG_QSCALE;
    encoder->global_quality = FF_QP2LAMBDA * 2;
    CheckAv(avcodec_open2(encoder.get(), codec, nullptr), "open the picture encoder");
    auto packet = NewPacket();
    CheckAv(avcodec_send_frame(encoder.get(), &picture), "encode a picture");
    CheckAv(avcodec_send_frame(encoder.get(), nullptr), "encode a picture");
    CheckAv(avcodec_receive_packet(encoder.get(), packet.get()), "encode a picture");
    return packet;
}

void ReplaceFile(const std::string& path, const std::uint8_t* bytes, std::size_t size) {
    const std::string temporary = path + ".part";
    std::FILE* file = std::fopen(temporary.c_str(), "wb");
    if (file == nullptr) CheckAv(AVERROR(errno), "write " + temporary);
    const bool written = std::fwrite(bytes, 1, size, file) == size;
    const bool closed = std::fclose(file) == 0;
    if (written && closed && std::rename(temporary.c_str(), path.c_str()) == 0) return;
    const int reason = errno;
    std::remove(temporary.c_str());
    CheckAv(AVERROR(reason), "write " + path);
}

}  // namespace

void DrawFit(const std::string& target, const std::string& source) {
    const PictureFormat format = FormatOf(target);
    const auto size = ReadPicture(target);
    const auto picture = ReadPicture(source);
    const double scale = std::min(static_cast<double>(size->width) / picture->width,
                                  static_cast<double>(size->height) / picture->height);
    const int width = std::clamp(static_cast<int>(picture->width * scale + 0.5), 1, size->width);
    const int height = std::clamp(static_cast<int>(picture->height * scale + 0.5), 1, size->height);
    auto canvas = Canvas(size->width, size->height, format.transparent);
    PutInMiddle(*canvas, *Converted(*picture, AV_PIX_FMT_RGBA, width, height), format.transparent);
    const auto packet = Encoded(*Converted(*canvas, format.pixels, size->width, size->height), format);
    ReplaceFile(target, packet->data, static_cast<std::size_t>(packet->size));
}

}  // namespace kestrum::media
