// The texts that users see: from res.xml of the install folder, by section and key, or the caller's English default.
// "\n" in a text is a line break and "%p" the product's name.
#pragma once

#include "support/Context.h"

namespace kestrum::modLanguage {

inline constexpr StringView kProductName = u"Kestrum";

/// The text of the entry `key` in `section`, both compared exactly; `fallback` if there is none. An entry with an empty
/// text is empty. Never fails.
String GetResString(const support::Context& c, StringView section, StringView key, StringView fallback);

/// Gives the form and its captioned controls the captions of the section named like the form. An entry that is missing
/// wipes the caption. Each form runs it while it loads.
void ApplyLanguage(const support::Context& c, ui::Form& form);

}  // namespace kestrum::modLanguage
