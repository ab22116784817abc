// The one clock of a recording: pictures, sound and requests are all stamped with it.
#pragma once

#include <time.h>

#include <cstdint>

namespace kestrum::media {

constexpr std::int64_t kNsPerMs = 1'000'000;
constexpr std::int64_t kNsPerSecond = 1'000'000'000;

/// Nanoseconds of CLOCK_MONOTONIC, which stands still while the machine is suspended, as the recording does.
inline std::int64_t MonotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNsPerSecond + now.tv_nsec;
}

}  // namespace kestrum::media
