// What the two masks are: half-transparent windows above everything that cover what lies beside the capture region.
#pragma once

#include "recording/Context.h"

namespace kestrum {

class MaskForm : public ui::Form {
  public:
    /// Covers `area` (logical desktop pixels). An area without a pixel is loaded, not shown.
    void Cover(const host::Rect& area);

  protected:
    MaskForm(const recording::Context& c, String name);
};

}  // namespace kestrum
