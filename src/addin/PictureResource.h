// Which of the program's picture resources a control of the ribbon shows.
#pragma once

#include <cstdint>
#include <optional>

#include "host/String.h"

namespace kestrum::addin {

enum class PictureKind { Icon, Bitmap };

struct PictureResource {
    std::int32_t number = 0;
    PictureKind kind = PictureKind::Bitmap;
    bool operator==(const PictureResource&) const = default;
};

/// By control id; none for a control without a picture of ours.
std::optional<PictureResource> PictureOf(StringView controlId);

}  // namespace kestrum::addin
