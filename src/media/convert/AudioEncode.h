// Sound encoded anew as AAC, at the recording's sample rate and channels. A gap in the recording becomes silence, so
// that sound and picture stay in step.
#pragma once

#include <cstdint>

#include "media/convert/Mp4Output.h"
#include "media/convert/TrackJob.h"

namespace kestrum::media {

class AudioEncode : public TrackJob {
  public:
    /// `kbps`: wished bitrate; raised to what keeps speech clear (64 for one channel, 96 for more).
    AudioEncode(const AVStream& source, int kbps, Mp4Output& output);
    void Take(AVPacket& packet) override;
    void Finish(std::int64_t lengthMs) override;

  private:
    void OpenEncoder(const AVCodecParameters& source, int kbps);
    void OpenResampler();
    void Decode(const AVPacket* packet);
    void TakeSamples(const AVFrame& decoded);
    void FillGap(std::int64_t startMs);
    void Queue(const AVFrame& samples);
    void EncodeQueued(bool all);
    void Encode(AVFrame* samples);
    AvHandle<AVFrame> NewSamples(int count) const;

    AVRational m_timeBase;
    Mp4Output& m_output;
    AVStream& m_track;
    AvHandle<AVCodecContext> m_decoder;
    AvHandle<AVCodecContext> m_encoder;
    AvHandle<SwrContext> m_resampler;
    AvHandle<AVAudioFifo> m_queue;
    AvHandle<AVPacket> m_packet;
    std::int64_t m_encoded = 0;  ///< samples handed to the encoder
};

}  // namespace kestrum::media
