// JSON text to a tree of values and back. The reader is forgiving: it takes comments, single quotes, unquoted keys and
// parentheses, never fails, and collects what went wrong in one text. The writer emits ASCII only.
#pragma once

#include "support/Collection.h"
#include "support/Dictionary.h"
#include "support/State.h"

namespace kestrum::JSON {

/// A Dictionary, a Collection, or Empty if the text begins with neither. With errors, whatever had been built. Text
/// behind the top-level value is ignored. Containers nest at most 256 deep; a deeper one is an error and ends
/// the reading. Takes time and
/// memory in proportion to the text: a faulty text of megabytes gets no more messages once they fill a million
/// characters.
Value ParseJson(support::State& state, StringView text);

/// What the last ParseJson found wrong; empty means clean.
const String& GetJsonErrors(const support::State& state);

/// The value as JSON text. Keys are written as they stand, not escaped; Empty is written as nothing. Never fails: a
/// container inside itself, or more than 1000 containers deep, is written as nothing.
String ToJsonText(const Value& value);

/// The text with JSON's escapes, without quotes; "/" is escaped too.
String EscapeString(StringView text);

}  // namespace kestrum::JSON
