// The default text form of a value: numbers as the program writes them, under any locale.
#pragma once

#include "support/Value.h"

namespace kestrum {

/// Text of a number of any kind, with a point as decimal sign; a float tells 7 digits, a double 15. Empty has no text,
/// nor has a value of another kind.
String NumberText(const Value& value);

}  // namespace kestrum
