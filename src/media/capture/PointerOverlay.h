// The mouse pointer in the picture: painted for the moment of the conversion, so that the kept screen stays clean.
#pragma once

#include <vector>

#include "media/capture/Picture.h"
#include "media/capture/Screen.h"

namespace kestrum::media {

class PointerOverlay {
  public:
    /// Takes the pointer as it is now; marks what its old and its new image cover if anything about it changed.
    void Update(PointerImage now, ChangeMap& changes);
    /// Paints it and keeps what was below.
    void Paint(BgraPicture& picture);
    /// Puts back what Paint covered.
    void Remove(BgraPicture& picture);

  private:
    PointerImage m_pointer;
    Area m_covered;
    std::vector<std::uint32_t> m_below;
};

}  // namespace kestrum::media
