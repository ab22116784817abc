// Rectangles of pixels.
#pragma once

#include <algorithm>

namespace kestrum::media {

/// `x`, `y` is the upper left corner; an area without width or height is empty.
struct Area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int Right() const { return x + width; }
    int Bottom() const { return y + height; }
    bool IsEmpty() const { return width <= 0 || height <= 0; }
    bool operator==(const Area&) const = default;
};

/// The common part of both, empty if there is none.
inline Area Intersect(const Area& a, const Area& b) {
    const int left = std::max(a.x, b.x), top = std::max(a.y, b.y);
    const int right = std::min(a.Right(), b.Right()), bottom = std::min(a.Bottom(), b.Bottom());
    return right > left && bottom > top ? Area{left, top, right - left, bottom - top} : Area{};
}

/// The smallest area that holds both.
inline Area Unite(const Area& a, const Area& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    const int left = std::min(a.x, b.x), top = std::min(a.y, b.y);
    return {left, top, std::max(a.Right(), b.Right()) - left, std::max(a.Bottom(), b.Bottom()) - top};
}

/// The largest area with the proportions of `inner` in the middle of `outer`, with even corners.
inline Area FitInto(const Area& inner, const Area& outer) {
    int width = outer.width, height = outer.height;
    if (static_cast<long long>(inner.width) * outer.height > static_cast<long long>(inner.height) * outer.width) {
        height = static_cast<int>(static_cast<long long>(outer.width) * inner.height / inner.width);
    } else {
        width = static_cast<int>(static_cast<long long>(outer.height) * inner.width / inner.height);
    }
    width = std::max(2, width & ~1);
    height = std::max(2, height & ~1);
    return {((outer.width - width) / 2) & ~1, ((outer.height - height) / 2) & ~1, width, height};
}

}  // namespace kestrum::media
