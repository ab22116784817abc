#include "recording/MaskForm.h"

#include "support/IndicatorStyle.h"

namespace kestrum {

MaskForm::MaskForm(const recording::Context& c, String name) : Form(c.forms, std::move(name)) {
    SetStyle(support::IndicatorStyle(support::kSeeThrough));
}

void MaskForm::Cover(const host::Rect& area) {
    Load();
    std::int32_t width = area.right - area.left, height = area.bottom - area.top;
    if (width <= 0 || height <= 0) return;
    SetBounds(area.left, area.top, width, height);
    Show();
}

}  // namespace kestrum
