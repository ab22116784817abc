// Letter case one code unit for one, without a locale: Latin with its accents, Greek, Cyrillic and full-width letters.
// Letters whose other case is more than one unit, and those of other scripts, stay as they are.
#pragma once

#include "host/String.h"

namespace kestrum {

String LowerLetters(StringView text);
String UpperLetters(StringView text);

}  // namespace kestrum
