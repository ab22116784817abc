#include "media/capture/h264/MotionSearch.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace kestrum::media::h264 {
namespace {

constexpr int kFarthest = 64;
constexpr int kMostSteps = 32;

int BitsOf(int difference) {
    int bits = 1;
    // Vectors are written in quarters of a sample.
    for (unsigned rest = 8U * static_cast<unsigned>(std::abs(difference)); rest > 1; rest >>= 1) bits += 2;
    return bits;
}

class Search {
  public:
    Search(const MacroblockSamples& source, const Frame& reference, int column, int row, Vector predicted,
           int costOfBit)
        : m_source(source),
          m_luma(reference.luma),
          m_x(column * 16),
          m_y(row * 16),
          m_predicted(predicted),
          m_costOfBit(costOfBit) {}

    void Try(Vector vector) {
        if (std::max(std::abs(vector.x), std::abs(vector.y)) > kFarthest || !IsInside(vector)) return;
        const int bits = BitsOf(vector.x - m_predicted.x) + BitsOf(vector.y - m_predicted.y);
        const int cost = Distance(m_source.luma.data(), m_luma.At(m_x + vector.x, m_y + vector.y), m_luma.width) +
                         bits * m_costOfBit;
        if (cost < best.cost) best = {vector, cost};
    }
    void GoDownhill() {
        for (int step = 0; step < kMostSteps; ++step) {
            const Vector centre = best.vector;
            for (const Vector side : {Vector{-1, 0}, Vector{1, 0}, Vector{0, -1}, Vector{0, 1}}) {
                Try({centre.x + side.x, centre.y + side.y});
            }
            if (best.vector == centre) return;
        }
    }
    void TryRing(int radius) {
        const Vector centre = best.vector;
        for (int y = -radius; y <= radius; y += radius) {
            for (int x = -radius; x <= radius; x += radius) Try({centre.x + x, centre.y + y});
        }
    }

    Match best{{}, std::numeric_limits<int>::max()};

  private:
    bool IsInside(Vector vector) const {
        const int x = m_x + vector.x, y = m_y + vector.y;
        return x >= 0 && y >= 0 && x + 16 <= m_luma.width && y + 16 <= m_luma.height;
    }

    const MacroblockSamples& m_source;
    const Plane& m_luma;
    int m_x;
    int m_y;
    Vector m_predicted;
    int m_costOfBit;
};

// Chroma has half the samples: an odd vector leads between two of them.
void PredictChroma(const Plane& reference, int x, int y, Vector vector, std::uint8_t* out) {
    const int fromX = x + (vector.x >> 1), fromY = y + (vector.y >> 1);
    const int stepX = vector.x & 1, stepY = vector.y & 1;
    for (int line = 0; line < 8; ++line) {
        const std::uint8_t* upper = reference.At(fromX, fromY + line);
        const std::uint8_t* lower = reference.At(fromX, fromY + line + stepY);
        for (int i = 0; i < 8; ++i) {
            *out++ = static_cast<std::uint8_t>((upper[i] + upper[i + stepX] + lower[i] + lower[i + stepX] + 2) >> 2);
        }
    }
}

}  // namespace

Match FindMotion(const MacroblockSamples& source, const Frame& reference, int column, int row,
                 std::span<const Vector> candidates, Vector predicted, int costOfBit) {
    Search search(source, reference, column, row, predicted, costOfBit);
    search.Try({});
    for (const Vector candidate : candidates) search.Try(candidate);
    for (const int radius : {16, 8, 4, 2}) search.TryRing(radius);
    search.GoDownhill();
    return search.best;
}

MacroblockSamples PredictByMotion(const Frame& reference, int column, int row, Vector vector) {
    MacroblockSamples samples;
    Take<16>(reference.luma, column * 16 + vector.x, row * 16 + vector.y, samples.luma.data());
    for (std::size_t i = 0; i < 2; ++i) {
        PredictChroma(reference.chroma[i], column * 8, row * 8, vector, samples.chroma[i].data());
    }
    return samples;
}

}  // namespace kestrum::media::h264
