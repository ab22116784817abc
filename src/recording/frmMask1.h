// Covers what lies left of, or above, the capture region.
#pragma once

#include "recording/MaskForm.h"

namespace kestrum {

class frmMask1 : public MaskForm {
  public:
    explicit frmMask1(const recording::Context& c) : MaskForm(c, u"frmMask1") {}
};

}  // namespace kestrum
