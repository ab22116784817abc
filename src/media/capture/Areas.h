// Lists of rectangles: what is left of an area behind holes, and what of a list lies within an area.
#pragma once

#include <vector>

#include "media/capture/Area.h"

namespace kestrum::media {

/// Rectangles, which may overlap; none of them is empty.
using Areas = std::vector<Area>;

/// What is left of `whole` without `hole`: up to four rectangles that do not overlap.
inline Areas Subtract(const Area& whole, const Area& hole) {
    const Area gone = Intersect(whole, hole);
    if (gone.IsEmpty()) return whole.IsEmpty() ? Areas{} : Areas{whole};
    Areas left;
    for (const Area& piece : {Area{whole.x, whole.y, whole.width, gone.y - whole.y},
                              Area{whole.x, gone.Bottom(), whole.width, whole.Bottom() - gone.Bottom()},
                              Area{whole.x, gone.y, gone.x - whole.x, gone.height},
                              Area{gone.Right(), gone.y, whole.Right() - gone.Right(), gone.height}}) {
        if (!piece.IsEmpty()) left.push_back(piece);
    }
    return left;
}

/// What is left of all of `areas` without any of `holes`.
inline Areas Subtract(Areas areas, const Areas& holes) {
    for (const Area& hole : holes) {
        Areas left;
        for (const Area& area : areas) {
            const Areas pieces = Subtract(area, hole);
            left.insert(left.end(), pieces.begin(), pieces.end());
        }
        areas = std::move(left);
    }
    return areas;
}

/// The parts of `areas` that lie in `limit`.
inline Areas Intersect(const Areas& areas, const Area& limit) {
    Areas inside;
    for (const Area& area : areas) {
        const Area part = Intersect(area, limit);
        if (!part.IsEmpty()) inside.push_back(part);
    }
    return inside;
}

/// `area` seen from another origin.
inline Area Moved(const Area& area, int byX, int byY) {
    return {area.x + byX, area.y + byY, area.width, area.height};
}

}  // namespace kestrum::media
