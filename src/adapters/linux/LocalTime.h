// The system's time as local date and time of day.
#pragma once

#include <time.h>

#include "host/IEventLoop.h"

namespace kestrum::platform {

inline host::DateTime LocalTime(const timespec& time) {
    tm parts{};
    localtime_r(&time.tv_sec, &parts);
    return {parts.tm_year + 1900,
            parts.tm_mon + 1,
            parts.tm_mday,
            parts.tm_hour,
            parts.tm_min,
            parts.tm_sec,
            static_cast<int>(time.tv_nsec / 1'000'000)};
}

}  // namespace kestrum::platform
