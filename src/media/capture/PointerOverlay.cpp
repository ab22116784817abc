#include "media/capture/PointerOverlay.h"

#include <utility>

#include "media/capture/Blend.h"

namespace kestrum::media {
void PointerOverlay::Update(PointerImage now, ChangeMap& changes) {
    if (now.place == m_pointer.place && now.pixels == m_pointer.pixels) return;
    changes.Mark(m_pointer.place);
    changes.Mark(now.place);
    m_pointer = std::move(now);
}

void PointerOverlay::Paint(BgraPicture& picture) {
    const Area& place = m_pointer.place;
    m_covered = Intersect(place, {0, 0, picture.width, picture.height});
    m_below.clear();
    for (int y = m_covered.y; y < m_covered.Bottom(); ++y) {
        const std::uint32_t* over = m_pointer.pixels.data() + static_cast<std::size_t>(y - place.y) * place.width;
        std::uint32_t* line = picture.Line(y);
        for (int x = m_covered.x; x < m_covered.Right(); ++x) {
            m_below.push_back(line[x]);
            line[x] = Blend(over[x - place.x], line[x]);
        }
    }
}

void PointerOverlay::Remove(BgraPicture& picture) {
    std::size_t next = 0;
    for (int y = m_covered.y; y < m_covered.Bottom(); ++y) {
        for (int x = m_covered.x; x < m_covered.Right(); ++x) picture.Line(y)[x] = m_below[next++];
    }
    m_covered = {};
}

}  // namespace kestrum::media
