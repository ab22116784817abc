// The custom picture size of a movie: what a typed side becomes, and what it makes of the other side.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum::publish {

struct MovieSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool operator==(const MovieSize&) const = default;
};

inline constexpr std::int32_t kLeastWidth = 240;
inline constexpr std::int32_t kLeastHeight = 180;
inline constexpr std::int32_t kMostPixels = 1920;

/// The number at the head of `text` as a whole one; blank counts 0. Numbers beyond 32 bits become its bounds.
std::int32_t TypedNumber(StringView text);

/// The size after `text` was typed as its height (or width): a multiple of 4 within the bounds; with `keepRatio` the
/// other side follows the proportions of `movie`, and where that breaks a bound both follow the bound. `edited` is the
/// size before.
MovieSize AcceptHeight(StringView text, bool keepRatio, const MovieSize& movie, const MovieSize& edited);
MovieSize AcceptWidth(StringView text, bool keepRatio, const MovieSize& movie, const MovieSize& edited);

/// kbit/s that a picture size needs by default, 300 to 12000.
std::int32_t DefaultBitrate(const MovieSize& size);

/// The number in `text` between 300 and 12000.
std::int32_t AcceptBitrate(StringView text);

}  // namespace kestrum::publish
