#include "project/CTime.h"

#include <cmath>
#include <vector>

#include "host/Error.h"
#include "support/Numbers.h"

namespace kestrum {
namespace {

constexpr double kMsPerSecond = 1000.0;
constexpr std::int32_t kSecondsPerMinute = 60;
constexpr std::int32_t kMinutesPerHour = 60;
constexpr std::int32_t kSecondsPerHour = kSecondsPerMinute * kMinutesPerHour;

struct Clock {
    std::int32_t hours = 0;
    std::int32_t minutes = 0;
    float seconds = 0;
};

Clock Split(std::int32_t ms) {
    const double total = ms / kMsPerSecond;
    Clock clock;
    clock.minutes = static_cast<std::int32_t>(total / kSecondsPerMinute) % kMinutesPerHour;
    clock.hours = static_cast<std::int32_t>(total / kSecondsPerHour);
    clock.seconds = static_cast<float>(total - kSecondsPerMinute * clock.minutes - kSecondsPerHour * clock.hours);
    return clock;
}

void RoundToSeconds(Clock& clock) {
    clock.seconds = static_cast<float>(RoundHalfEven(static_cast<double>(clock.seconds)));
    if (clock.seconds != kSecondsPerMinute) return;
    clock.seconds = 0;
    if (++clock.minutes != kMinutesPerHour) return;
    clock.minutes = 0;
    ++clock.hours;
}

std::vector<StringView> SplitAtColons(StringView text) {
    std::vector<StringView> parts;
    for (std::size_t at = text.find(u':'); at != StringView::npos; at = text.find(u':')) {
        parts.push_back(text.substr(0, at));
        text.remove_prefix(at + 1);
    }
    parts.push_back(text);
    return parts;
}

}  // namespace

String CTime::GetString(std::int32_t ms, StringView mode) {
    if (ms == -1) return u"-";
    Clock clock = Split(ms);
    const bool whole = mode == u"sec" || clock.seconds == std::trunc(clock.seconds);
    if (whole) RoundToSeconds(clock);
    String text = FormatPattern(clock.minutes, u"00") + u":" + FormatPattern(clock.seconds, whole ? u"00" : u"00.000");
    if (clock.hours > 0) text = FormatPattern(clock.hours, u"0") + u":" + text;
    return text;
}

std::int32_t CTime::GetSecond(StringView text) {
    const std::vector<StringView> parts = SplitAtColons(text);
    if (parts.size() < 2)
        throw host::Error(host::ErrorNumber::OutOfRange, u"CTime.GetSecond", u"Subscript out of range");
    double seconds = 0;
    if (parts.size() == 3)
        seconds = Val(parts[0]) * kSecondsPerHour + Val(parts[1]) * kSecondsPerMinute + Val(parts[2]);
    else
        seconds = Val(parts[0]) * kSecondsPerMinute + Val(parts[1]);
    return ToInt32(seconds * kMsPerSecond);
}

}  // namespace kestrum
