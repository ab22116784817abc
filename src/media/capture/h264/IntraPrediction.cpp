#include "media/capture/h264/IntraPrediction.h"

#include <cstdlib>
#include <limits>
#include <numeric>

namespace kestrum::media::h264 {
namespace {

constexpr int kMiddleGrey = 128;

/// The line above and the column to the left of a square, where the picture has them.
template <std::size_t kSide>
struct Surroundings {
    Surroundings(const Plane& plane, int x, int y) : hasAbove(y > 0), hasLeft(x > 0) {
        if (hasAbove) std::memcpy(above.data(), plane.At(x, y - 1), kSide);
        if (hasLeft) {
            for (std::size_t i = 0; i < kSide; ++i) left[i] = *plane.At(x - 1, y + static_cast<int>(i));
        }
    }

    bool hasAbove;
    bool hasLeft;
    std::array<std::uint8_t, kSide> above{};
    std::array<std::uint8_t, kSide> left{};
};

template <std::size_t kSide>
void FillVertical(const Surroundings<kSide>& around, std::uint8_t* out) {
    for (std::size_t line = 0; line < kSide; ++line) std::memcpy(out + line * kSide, around.above.data(), kSide);
}

template <std::size_t kSide>
void FillHorizontal(const Surroundings<kSide>& around, std::uint8_t* out) {
    for (std::size_t line = 0; line < kSide; ++line) std::memset(out + line * kSide, around.left[line], kSide);
}

template <std::size_t kCount>
int Sum(const std::array<std::uint8_t, kCount>& samples, std::size_t from, std::size_t count) {
    const auto* first = samples.data() + from;
    return std::accumulate(first, first + count, 0);
}

int LumaMean(const Surroundings<16>& around) {
    if (around.hasAbove && around.hasLeft) return (Sum(around.above, 0, 16) + Sum(around.left, 0, 16) + 16) >> 5;
    if (around.hasAbove) return (Sum(around.above, 0, 16) + 8) >> 4;
    return around.hasLeft ? (Sum(around.left, 0, 16) + 8) >> 4 : kMiddleGrey;
}

// Each quarter has a mean of its own; the two off the diagonal look at one side only, if the picture has it.
int ChromaMean(const Surroundings<8>& around, std::size_t x, std::size_t y) {
    const int above = Sum(around.above, x, 4), left = Sum(around.left, y, 4);
    const bool both = around.hasAbove && around.hasLeft;
    if (both && (x > 0) == (y > 0)) return (above + left + 4) >> 3;
    const bool takeAbove = around.hasAbove && (!around.hasLeft || (x > 0 && y == 0));
    if (takeAbove) return (above + 2) >> 2;
    return around.hasLeft ? (left + 2) >> 2 : kMiddleGrey;
}

void FillChromaMean(const Surroundings<8>& around, std::uint8_t* out) {
    for (std::size_t y = 0; y < 8; y += 4) {
        for (std::size_t x = 0; x < 8; x += 4) {
            const int mean = ChromaMean(around, x, y);
            for (std::size_t line = 0; line < 4; ++line) std::memset(out + (y + line) * 8 + x, mean, 4);
        }
    }
}

int ChromaDistance(const MacroblockSamples& one, const MacroblockSamples& other) {
    int sum = 0;
    for (std::size_t plane = 0; plane < 2; ++plane) {
        for (std::size_t i = 0; i < 64; ++i) sum += std::abs(one.chroma[plane][i] - other.chroma[plane][i]);
    }
    return sum;
}

class Choice {
  public:
    Choice(const MacroblockSamples& source, const Frame& picture, int column, int row)
        : m_source(source),
          m_luma(picture.luma, column * 16, row * 16),
          m_chroma{Surroundings<8>(picture.chroma[0], column * 8, row * 8),
                   Surroundings<8>(picture.chroma[1], column * 8, row * 8)} {
        best.cost = std::numeric_limits<int>::max();
    }

    void ChooseLuma() {
        MacroblockSamples samples;
        const auto consider = [&](LumaMode mode) {
            const int cost = Distance(m_source.luma.data(), samples.luma.data(), 16);
            if (cost >= best.cost) return;
            best.cost = cost;
            best.lumaMode = mode;
            best.samples.luma = samples.luma;
        };
        std::memset(samples.luma.data(), LumaMean(m_luma), samples.luma.size());
        consider(LumaMode::kMean);
        if (m_luma.hasAbove) {
            FillVertical(m_luma, samples.luma.data());
            consider(LumaMode::kVertical);
        }
        if (m_luma.hasLeft) {
            FillHorizontal(m_luma, samples.luma.data());
            consider(LumaMode::kHorizontal);
        }
    }

    void ChooseChroma() {
        MacroblockSamples samples;
        int least = std::numeric_limits<int>::max();
        const auto consider = [&](ChromaMode mode, auto fill) {
            for (std::size_t i = 0; i < 2; ++i) fill(m_chroma[i], samples.chroma[i].data());
            const int cost = ChromaDistance(m_source, samples);
            if (cost >= least) return;
            least = cost;
            best.chromaMode = mode;
            best.samples.chroma = samples.chroma;
        };
        consider(ChromaMode::kMean, FillChromaMean);
        if (m_luma.hasAbove) consider(ChromaMode::kVertical, FillVertical<8>);
        if (m_luma.hasLeft) consider(ChromaMode::kHorizontal, FillHorizontal<8>);
    }

    IntraMatch best;

  private:
    const MacroblockSamples& m_source;
    Surroundings<16> m_luma;
    std::array<Surroundings<8>, 2> m_chroma;
};

}  // namespace

IntraMatch PredictInside(const MacroblockSamples& source, const Frame& picture, int column, int row) {
    Choice choice(source, picture, column, row);
    choice.ChooseLuma();
    choice.ChooseChroma();
    return choice.best;
}

}  // namespace kestrum::media::h264
