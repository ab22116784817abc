// Pictures in memory: the screen as the X server gives it, the picture as the encoder takes it, and which of its
// macroblocks changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "media/capture/Area.h"

namespace kestrum::media {

constexpr int kBlock = 16;  ///< side of a macroblock

/// 32 bits a pixel, in memory blue, green, red, unused; no padding between lines.
struct BgraPicture {
    BgraPicture(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w) * h) {}

    std::uint32_t* Line(int y) { return pixels.data() + static_cast<std::size_t>(y) * width; }
    const std::uint32_t* Line(int y) const { return pixels.data() + static_cast<std::size_t>(y) * width; }

    int width;
    int height;
    std::vector<std::uint32_t> pixels;
};

/// Planar 4:2:0, limited range, BT.709. Width and height are even; lines are padded to whole macroblocks.
struct I420Picture {
    I420Picture(int w, int h)
        : width(w),
          height(h),
          lumaStride((w + 63) & ~63),
          chromaStride(lumaStride / 2),
          luma(static_cast<std::size_t>(lumaStride) * h, 16),
          cb(static_cast<std::size_t>(chromaStride) * (h / 2), 128),
          cr(static_cast<std::size_t>(chromaStride) * (h / 2), 128) {}

    int width;
    int height;
    int lumaStride;
    int chromaStride;
    std::vector<std::uint8_t> luma;
    std::vector<std::uint8_t> cb;
    std::vector<std::uint8_t> cr;
};

/// One flag a macroblock, in raster order.
class ChangeMap {
  public:
    ChangeMap(int width, int height)
        : m_columns((width + kBlock - 1) / kBlock),
          m_rows((height + kBlock - 1) / kBlock),
          m_changed(static_cast<std::size_t>(m_columns) * m_rows, 0) {}

    int Columns() const { return m_columns; }
    int Rows() const { return m_rows; }
    bool IsChanged(int column, int row) const { return m_changed[Index(column, row)] != 0; }
    void Mark(int column, int row) {
        m_count += m_changed[Index(column, row)] == 0;
        m_changed[Index(column, row)] = 1;
    }
    /// Marks every macroblock that the area touches; the area may reach beyond the picture.
    void Mark(const Area& area) {
        const Area inside = Intersect(area, {0, 0, m_columns * kBlock, m_rows * kBlock});
        if (inside.IsEmpty()) return;
        for (int row = inside.y / kBlock; row <= (inside.Bottom() - 1) / kBlock; ++row) {
            for (int column = inside.x / kBlock; column <= (inside.Right() - 1) / kBlock; ++column) Mark(column, row);
        }
    }
    void MarkAll() { Mark(Area{0, 0, m_columns * kBlock, m_rows * kBlock}); }
    /// Marks what `other`, of the same size, has marked.
    void Add(const ChangeMap& other) {
        for (std::size_t i = 0; i < m_changed.size(); ++i) {
            m_count += other.m_changed[i] > m_changed[i];
            m_changed[i] |= other.m_changed[i];
        }
    }
    void Clear() {
        m_changed.assign(m_changed.size(), 0);
        m_count = 0;
    }
    std::size_t Count() const { return m_count; }
    std::size_t Size() const { return m_changed.size(); }

  private:
    std::size_t Index(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
    }

    int m_columns;
    int m_rows;
    std::vector<std::uint8_t> m_changed;
    std::size_t m_count = 0;
};

}  // namespace kestrum::media
