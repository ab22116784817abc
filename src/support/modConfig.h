// The settings store: (section, key) to text under the application name "Larkspin5", shared by all instances of the
// user. What is not set reads as the caller's default. Free text is kept in the hexadecimal form (modGlobal).
#pragma once

#include "support/Context.h"

namespace kestrum::modConfig {

inline constexpr StringView kApplication = u"Larkspin5";

/// The stored text, an empty one too; `fallback` if the key was never set. Never fails.
String GetSetting(const support::Context& c, StringView section, StringView key, StringView fallback);

/// Stores a text. False, with a trace, if the store cannot be written: a full disk or a folder without rights must cost
/// a preference at most, never a recording.
bool SaveSetting(const support::Context& c, StringView section, StringView key, StringView value);

/// A setting in the hexadecimal form. A longer plain value is returned as it stands (older versions wrote those); one
/// of two characters or less reads as `fallback`.
String GetHexSetting(const support::Context& c, StringView section, StringView key, StringView fallback);

/// What a stored text stands for: a value in the hexadecimal form, a plain one as it is, `fallback` for two characters
/// or less.
String DecodeHexSetting(StringView stored, StringView fallback);
/// Stores the hexadecimal form of `value`; an empty value stores an empty text. Fails as SaveSetting does.
bool SaveHexSetting(const support::Context& c, StringView section, StringView key, StringView value);

}  // namespace kestrum::modConfig
