// Covers what lies right of, or below, the capture region.
#pragma once

#include "recording/MaskForm.h"

namespace kestrum {

class frmMask2 : public MaskForm {
  public:
    explicit frmMask2(const recording::Context& c) : MaskForm(c, u"frmMask2") {}
};

}  // namespace kestrum
