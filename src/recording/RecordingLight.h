// The red light that says that a recording runs.
#pragma once

#include "ui/Controls.h"

namespace kestrum::recording {

/// A red disc on the dark plate of a notice.
inline void MakeRecordingLight(ui::Label& label) {
    constexpr std::int32_t kRed = 0x4A4AFF;  // 0x00BBGGRR
    label.SetCaption(u"\u25CF");
    label.SetForeColour(kRed);
}

}  // namespace kestrum::recording
