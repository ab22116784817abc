// The red light that says that a recording runs.
#pragma once

#include "recording/Context.h"
#include "support/modLanguage.h"

namespace kestrum::recording {

/// A red disc on the dark plate of a notice; who does not see it is told its name.
inline void MakeRecordingLight(const Context& c, ui::Label& label) {
    constexpr std::int32_t kRed = 0x4A4AFF;  // 0x00BBGGRR
    label.SetCaption(u"\u25CF");
    label.SetForeColour(kRed);
    label.SetAccessibleName(modLanguage::GetResString(c, u"frmCommon", u"msgRecordingLight", u"Recording"));
}

}  // namespace kestrum::recording
