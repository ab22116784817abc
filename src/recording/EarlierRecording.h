// What a package holds already when a recording into it begins: how long it is, and when its last part was recorded.
// Decides how both are written for people.
#pragma once

#include <optional>

#include "recording/Context.h"

namespace kestrum::recording {

struct EarlierRecording {
    std::int32_t lengthMs = 0;
    /// When its last entry was made; none if the project does not tell.
    std::optional<host::DateTime> last;
};

/// The package is there and holds media.
bool HasEarlierRecording(const support::Context& c, const String& package);

/// Reads the project's own data; none for a package without media. Throws host::Error if the temporary copy of the
/// project file cannot be read.
std::optional<EarlierRecording> ReadEarlierRecording(const support::Context& c, const String& package);

/// Hours and minutes, "1:20"; below a minute "20 s".
String LengthText(std::int32_t ms);

/// "today", the weekday of one of the last six days, else the date as 2026-11-03.
String DayText(const support::Context& c, const host::DateTime& day);

}  // namespace kestrum::recording
