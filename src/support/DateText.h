// Dates as the project files, settings and logs write them: "yyyy/M/d hh:mm:ss".
#pragma once

#include <cstdint>
#include <optional>

#include "host/IEventLoop.h"

namespace kestrum {

/// "2024/3/7 09:05:00".
String DateTimeText(const host::DateTime& time);

/// The date and time that `text` writes (the time of day may be missing); none if it is no such text or no such day.
std::optional<host::DateTime> ParseDateTime(StringView text);

/// Seconds from `earlier` to `later`, negative if they stand the other way. Local times as they are written.
std::int64_t SecondsBetween(const host::DateTime& earlier, const host::DateTime& later);

}  // namespace kestrum
