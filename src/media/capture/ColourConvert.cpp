#include "media/capture/ColourConvert.h"

namespace kestrum::media {
namespace {

// BT.709, limited range, 15 fractional bits: luma 219 steps, chroma 224 steps of full range.
constexpr int kYr = 5983, kYg = 20127, kYb = 2032;
constexpr int kUr = -3298, kUg = -11094, kUb = 14392;
constexpr int kVr = 14392, kVg = -13072, kVb = -1320;
constexpr int kShift = 15;
constexpr int kHalf = 1 << (kShift - 1);

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define KESTRUM_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define KESTRUM_VECTOR_CLONES
#endif

KESTRUM_VECTOR_CLONES
void LumaLine(const std::uint32_t* __restrict from, std::uint8_t* __restrict to, int count) {
    for (int i = 0; i < count; ++i) {
        const int b = static_cast<int>(from[i] & 0xFF);
        const int g = static_cast<int>((from[i] >> 8) & 0xFF);
        const int r = static_cast<int>((from[i] >> 16) & 0xFF);
        to[i] = static_cast<std::uint8_t>(((kYr * r + kYg * g + kYb * b + kHalf) >> kShift) + 16);
    }
}

KESTRUM_VECTOR_CLONES
void ChromaLine(const std::uint32_t* __restrict upper, const std::uint32_t* __restrict lower,
                std::uint8_t* __restrict cb, std::uint8_t* __restrict cr, int count) {
    for (int i = 0; i < count; ++i) {
        const std::uint32_t p0 = upper[2 * i], p1 = upper[2 * i + 1], p2 = lower[2 * i], p3 = lower[2 * i + 1];
        const int b = static_cast<int>((p0 & 0xFF) + (p1 & 0xFF) + (p2 & 0xFF) + (p3 & 0xFF));
        const int g =
            static_cast<int>(((p0 >> 8) & 0xFF) + ((p1 >> 8) & 0xFF) + ((p2 >> 8) & 0xFF) + ((p3 >> 8) & 0xFF));
        const int r =
            static_cast<int>(((p0 >> 16) & 0xFF) + ((p1 >> 16) & 0xFF) + ((p2 >> 16) & 0xFF) + ((p3 >> 16) & 0xFF));
        // Four pixels are summed, so two bits more are shifted out.
        cb[i] = static_cast<std::uint8_t>(((kUr * r + kUg * g + kUb * b + 4 * kHalf) >> (kShift + 2)) + 128);
        cr[i] = static_cast<std::uint8_t>(((kVr * r + kVg * g + kVb * b + 4 * kHalf) >> (kShift + 2)) + 128);
    }
}

}  // namespace

void ConvertArea(const BgraPicture& from, I420Picture& to, const Area& area) {
    for (int y = area.y; y < area.Bottom(); y += 2) {
        const std::uint32_t* upper = from.Line(y) + area.x;
        const std::uint32_t* lower = from.Line(y + 1) + area.x;
        std::uint8_t* luma = to.luma.data() + static_cast<std::size_t>(y) * to.lumaStride + area.x;
        LumaLine(upper, luma, area.width);
        LumaLine(lower, luma + to.lumaStride, area.width);
        const std::size_t chroma = static_cast<std::size_t>(y / 2) * to.chromaStride + area.x / 2;
        ChromaLine(upper, lower, to.cb.data() + chroma, to.cr.data() + chroma, area.width / 2);
    }
}

void ConvertChanged(const BgraPicture& from, I420Picture& to, const ChangeMap& changes) {
    const Area whole{0, 0, to.width, to.height};
    for (int row = 0; row < changes.Rows(); ++row) {
        for (int column = 0; column < changes.Columns(); ++column) {
            if (!changes.IsChanged(column, row)) continue;
            const int first = column;
            while (column + 1 < changes.Columns() && changes.IsChanged(column + 1, row)) ++column;
            const Area run{first * kBlock, row * kBlock, (column + 1 - first) * kBlock, kBlock};
            ConvertArea(from, to, Intersect(run, whole));
        }
    }
}

}  // namespace kestrum::media
