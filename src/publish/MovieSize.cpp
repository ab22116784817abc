#include "publish/MovieSize.h"

#include <algorithm>
#include <limits>

#include "publish/modPublish.h"
#include "support/Numbers.h"

namespace kestrum::publish {

namespace {

using modPublish::DownToFour;

constexpr std::int32_t kLeastBitrate = 300;
constexpr std::int32_t kMostBitrate = 12000;
/// kbit/s for each pixel, in single precision.
constexpr float kBitrateOfPixel = 0.00058f;

/// One side typed, the other to follow; width and height are each other's mirror image.
struct Sides {
    std::int32_t typed;
    std::int32_t other;
};

struct OtherBounds {
    std::int32_t least;
    std::int32_t most;
};

/// `other` when it has the proportions of `movie` to `typed`, before and after a bound.
Sides Follow(std::int32_t typed, const Sides& movie, const OtherBounds& bounds) {
    const double exact = static_cast<double>(movie.other) * typed / movie.typed;
    const std::int32_t other = DownToFour(ToInt32(exact));
    if (other >= bounds.least && other <= bounds.most) return {typed, other};
    const std::int32_t bound = other > bounds.most ? bounds.most : bounds.least;
    const double bounded = static_cast<double>(movie.typed) * bound / movie.other;
    return {DownToFour(static_cast<std::int32_t>(std::min<double>(bounded, std::numeric_limits<std::int32_t>::max()))),
            bound};
}

Sides Accept(StringView text, std::int32_t least, bool keepRatio, const Sides& movie, std::int32_t other,
             const OtherBounds& bounds) {
    const std::int32_t typed = std::clamp(DownToFour(TypedNumber(text)), least, kMostPixels);
    // A recording without a picture has no proportions to keep.
    if (!keepRatio || movie.typed <= 0 || movie.other <= 0) return {typed, other};
    return Follow(typed, movie, bounds);
}

}  // namespace

std::int32_t TypedNumber(StringView text) {
    const double bound = std::numeric_limits<std::int32_t>::max();
    return ToInt32(std::clamp(Val(text), -bound, bound));
}

MovieSize AcceptHeight(StringView text, bool keepRatio, const MovieSize& movie, const MovieSize& edited) {
    const Sides sides =
        Accept(text, kLeastHeight, keepRatio, {movie.height, movie.width}, edited.width, {kLeastWidth, kMostPixels});
    return {sides.other, sides.typed};
}

MovieSize AcceptWidth(StringView text, bool keepRatio, const MovieSize& movie, const MovieSize& edited) {
    const Sides sides =
        Accept(text, kLeastWidth, keepRatio, {movie.width, movie.height}, edited.height, {kLeastHeight, kMostPixels});
    return {sides.typed, sides.other};
}

std::int32_t DefaultBitrate(const MovieSize& size) {
    const double pixels = static_cast<double>(size.width) * size.height;
    return ToInt32(
        std::clamp<double>(RoundHalfEven(pixels * static_cast<double>(kBitrateOfPixel)), kLeastBitrate, kMostBitrate));
}

std::int32_t AcceptBitrate(StringView text) {
    return std::clamp(TypedNumber(text), kLeastBitrate, kMostBitrate);
}

}  // namespace kestrum::publish
