// Milliseconds to the time texts of project files and dialogs, and back.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum {

class CTime {
  public:
    /// `ms` as "mm:ss", "mm:ss.fff" or "h:mm:ss...", "-" for -1. Mode u"sec" rounds to whole seconds (halves to even);
    /// any other mode is exact to single precision, whose digits are part of the result.
    static String GetString(std::int32_t ms, StringView mode);

    /// Milliseconds (in spite of the name) of "h:m:s" or "m:s". Each part counts by its leading decimal number, none
    /// is 0; more than three parts are read as minutes and seconds from the first two. Throws host::Error 9 for a text
    /// without ":", 6 if the sum does not fit.
    static std::int32_t GetSecond(StringView text);
};

}  // namespace kestrum
