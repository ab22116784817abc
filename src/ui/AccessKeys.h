// Which letter of a caption takes the keyboard to its control (Alt and the letter). Captions are plain text of any
// language file, so the letters are found here: unique in a form, the first letter of a word where one is free.
#pragma once

#include <cstddef>
#include <vector>

#include "ui/Form.h"

namespace kestrum::ui {

struct AccessKey {
    /// Bears the letter: the control itself, or the label of a field.
    const CaptionedControl* caption;
    /// Place of the letter in the caption.
    std::size_t at;
    /// Gets the keyboard.
    const Control* target;
};

/// The access keys of a form, hidden controls included, so that a letter stays when a control comes and goes. The
/// controls that take turns on one place share one if they can. The buttons of Enter and Escape need none; a control
/// whose caption has no free letter (or no letters at all) has none.
std::vector<AccessKey> AccessKeysOf(const Form& form);

}  // namespace kestrum::ui
