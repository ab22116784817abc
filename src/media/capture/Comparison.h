// Fresh pixels against a picture: what differs is taken over and marked.
#pragma once

#include <algorithm>
#include <cstring>

#include "media/capture/Picture.h"

namespace kestrum::media {

/// Pixels of `part` of a picture, line by line without padding.
struct FreshPixels {
    const std::uint32_t* pixels;
    Area part;

    const std::uint32_t* At(int x, int y) const {
        return pixels + static_cast<std::ptrdiff_t>(y - part.y) * part.width + (x - part.x);
    }
};

/// Takes over one line of `piece`.
inline void TakeOverLine(BgraPicture& picture, ChangeMap& changes, const Area& piece, int y,
                         const std::uint32_t* fresh) {
    std::uint32_t* old = picture.Line(y) + piece.x;
    const std::size_t bytes = static_cast<std::size_t>(piece.width) * sizeof(std::uint32_t);
    if (std::memcmp(old, fresh, bytes) == 0) return;
    for (int x = 0; x < piece.width;) {
        const int column = (piece.x + x) / kBlock;
        const int count = std::min((column + 1) * kBlock - (piece.x + x), piece.width - x);
        const std::size_t blockBytes = static_cast<std::size_t>(count) * sizeof(std::uint32_t);
        if (std::memcmp(old + x, fresh + x, blockBytes) != 0) changes.Mark(column, y / kBlock);
        x += count;
    }
    std::memcpy(old, fresh, bytes);
}

/// Takes over `piece`, which lies in `fresh`, and marks the macroblocks that differed.
inline void TakeOver(BgraPicture& picture, ChangeMap& changes, const Area& piece, const FreshPixels& fresh) {
    for (int y = piece.y; y < piece.Bottom(); ++y) {
        TakeOverLine(picture, changes, piece, y, fresh.At(piece.x, y));
    }
}

}  // namespace kestrum::media
