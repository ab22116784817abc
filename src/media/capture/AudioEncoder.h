// AAC-LC for the package. Decides how the encoder's delay is hidden: the first access unit, which holds nothing but the
// delay, is left out, so that unit n holds exactly the samples from n times 1024.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "media/package/PackageTypes.h"

namespace kestrum::media {

struct AudioLayout {
    int rate = 48000;
    int channels = 1;
    int bitsPerSecond = 64000;
};

class AudioEncoder {
  public:
    /// Gets each access unit with the number of its first frame since the start.
    using Output = std::function<void(std::int64_t firstFrame, std::span<const std::uint8_t> unit)>;

    static constexpr int kFramesPerUnit = 1024;

    /// Throws CaptureError if the encoder refuses the layout.
    explicit AudioEncoder(const AudioLayout& layout);
    ~AudioEncoder();
    AudioEncoder(const AudioEncoder&) = delete;
    AudioEncoder& operator=(const AudioEncoder&) = delete;

    const Bytes& AudioSpecificConfig() const;
    /// Takes interleaved samples; whole units come out, the rest waits. Throws CaptureError.
    void Encode(std::span<const float> samples, const Output& output);
    /// Fills the last unit with silence and gives out all that is left.
    void Finish(const Output& output);

  private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace kestrum::media
