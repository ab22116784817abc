// Owning handles for the objects of libavformat, libavcodec, libswscale and libswresample, and the one way a failed
// call of theirs becomes an exception of the media engine.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace kestrum::media {

struct AvDelete {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
    void operator()(SwrContext* resampler) const { swr_free(&resampler); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

template <class T>
using AvHandle = std::unique_ptr<T, AvDelete>;

/// Result of a library call: passes values from 0 up on; throws std::bad_alloc for want of memory, else media::Error
/// whose sentence is "Cannot " + `doing` + the library's reason.
int CheckAv(int result, const std::string& doing);

/// Never null; std::bad_alloc otherwise.
AvHandle<AVPacket> NewPacket();
AvHandle<AVFrame> NewFrame();

/// Opens a file for reading and finds its streams. Failures as CheckAv.
AvHandle<AVFormatContext> OpenInput(const std::string& path);

/// A decoder for `stream` in as many threads as the machine has, at work in the ways of `threadType` (FF_THREAD_...).
AvHandle<AVCodecContext> OpenDecoder(const AVStream& stream, int threadType = FF_THREAD_FRAME | FF_THREAD_SLICE);

}  // namespace kestrum::media
