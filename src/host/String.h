// The text of the whole system: UTF-16 code units. Positions and lengths in the rules count these units.
// Conversion from and to UTF-8 happens in adapters and in file codecs only, with the two functions below.
#pragma once

#include <string>
#include <string_view>

namespace kestrum {

using String = std::u16string;
using StringView = std::u16string_view;

namespace host {

/// UTF-8 of `text`; an unpaired surrogate becomes U+FFFD.
std::string ToUtf8(StringView text);

/// UTF-16 of `bytes`; each byte that is not part of valid UTF-8 becomes U+FFFD.
String FromUtf8(std::string_view bytes);

/// Every byte is part of valid UTF-8.
bool IsUtf8(std::string_view bytes);

}  // namespace host
}  // namespace kestrum
