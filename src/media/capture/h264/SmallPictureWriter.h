// P pictures in which only changed macroblocks are coded. Decides how each of them is predicted and how finely it is
// coded, and keeps the picture that decoders hold.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "media/capture/Picture.h"
#include "media/capture/h264/Frame.h"
#include "media/capture/h264/SliceWriter.h"

namespace kestrum::media::h264 {

/// The last picture of the general encoder, as decoders show it: luma, and chroma with Cb and Cr in turns (NV12), in
/// whole macroblocks.
struct DecodedPicture {
    const std::uint8_t* luma;
    std::ptrdiff_t lumaStride;
    const std::uint8_t* chroma;
    std::ptrdiff_t chromaStride;
};

class SmallPictureWriter {
  public:
    /// Size of the pictures in samples.
    SmallPictureWriter(const SequenceSet& sequence, int width, int height);

    /// The picture parameter set that the pictures refer to, as a unit with its length in front: it has to come before
    /// them.
    std::vector<std::uint8_t> PictureSet() const;
    /// Goes on from the general encoder's last picture. `frameNumber`: the next picture's distance from the last key
    /// frame.
    void TakeOver(const DecodedPicture& decoded, std::uint32_t frameNumber);
    /// Codes a picture whose macroblocks are those of the last call but for the marked ones. If none is marked, what
    /// was coded coarsely while it moved is made fine. The sample is valid until the next call.
    std::span<const std::uint8_t> Write(const I420Picture& picture, const ChangeMap& changes);
    /// What decoders show after the last picture.
    const Frame& Decoded() const { return m_current; }

  private:
    MacroblockSamples Source(const I420Picture& picture, int column, int row) const;
    void Code(const MacroblockSamples& source, int column, int row);
    void Refine(const MacroblockSamples& source, int column, int row);
    void Settle(Macroblock& macroblock, int parameter, const MacroblockSamples& source, MacroblockSamples& samples,
                int column, int row);
    std::size_t IndexOf(int column, int row) const;

    SequenceSet m_sequence;
    int m_width;
    int m_height;
    Frame m_reference;  ///< the picture before
    Frame m_current;
    SliceWriter m_slice;
    std::uint32_t m_frameNumber = 0;
    Vector m_lastVector;
    std::vector<std::uint8_t> m_isCoarse;  ///< a flag a macroblock
    std::vector<std::uint8_t> m_sample;
};

}  // namespace kestrum::media::h264
