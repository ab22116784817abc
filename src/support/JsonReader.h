// The readers of JSON.h: each takes the text with a position, counted from 1, and moves the position behind what it
// has read. Blanks between tokens include comments and parentheses.
#pragma once

#include "support/Collection.h"
#include "support/Dictionary.h"

namespace kestrum::JSON {

/// What is read, how far, and what went wrong so far.
struct Source {
    StringView text;
    std::size_t position = 1;
    String& errors;
    std::int32_t depth = 0;

    bool Inside() const { return position <= text.size(); }
    /// The character at the position, 0 past the end.
    char16_t Here() const { return Inside() ? text[position - 1] : u'\0'; }
    /// At most `count` characters from the position.
    StringView Next(std::size_t count) const { return Inside() ? text.substr(position - 1, count) : StringView(); }
};

void SkipBlanks(Source& source);
std::shared_ptr<Dictionary> ReadObject(Source& source);
std::shared_ptr<Collection> ReadArray(Source& source);
/// host::Error if a number does not convert or containers nest too deep; so do the readers below that say it.
Value ReadValue(Source& source);
String ReadString(Source& source);
/// Empty if the text ends within the number. host::Error 13 or 6 if what was collected is no number.
Value ReadNumber(Source& source);
Value ReadBoolean(Source& source);
Value ReadNull(Source& source);
String ReadKey(Source& source);

}  // namespace kestrum::JSON
