#include "support/DateText.h"

#include <array>

#include "support/Numbers.h"

namespace kestrum {
namespace {

String TwoDigits(int number) {
    return (number < 10 ? u"0" : u"") + ToText(number);
}

/// Reads digits at `position` and steps over them; none if there are none or too many.
std::optional<int> ReadNumber(StringView text, std::size_t& position) {
    const std::size_t first = position;
    int number = 0;
    while (position < text.size() && text[position] >= u'0' && text[position] <= u'9' && position - first < 5) {
        number = number * 10 + (text[position++] - u'0');
    }
    if (position == first) return std::nullopt;
    return number;
}

/// Numbers with `separator` between them, `count` of them.
bool ReadGroup(StringView text, std::size_t& position, char16_t separator, int* numbers, int count) {
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            if (position >= text.size() || text[position] != separator) return false;
            ++position;
        }
        const std::optional<int> number = ReadNumber(text, position);
        if (!number) return false;
        numbers[i] = *number;
    }
    return true;
}

bool IsLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int DaysInMonth(int year, int month) {
    static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

bool IsValid(const host::DateTime& t) {
    const bool day =
        t.year >= 1 && t.month >= 1 && t.month <= 12 && t.day >= 1 && t.day <= DaysInMonth(t.year, t.month);
    return day && t.hour <= 23 && t.minute <= 59 && t.second <= 59;
}

/// Days since 1 March of year 0 in the Gregorian calendar: with years that begin in March the leap day comes last.
std::int64_t DayNumber(const host::DateTime& t) {
    const std::int64_t year = t.month <= 2 ? t.year - 1 : t.year;
    const std::int64_t month = (t.month + 9) % 12;
    return year * 365 + year / 4 - year / 100 + year / 400 + (month * 306 + 5) / 10 + t.day - 1;
}

std::int64_t SecondNumber(const host::DateTime& t) {
    return ((DayNumber(t) * 24 + t.hour) * 60 + t.minute) * 60 + t.second;
}

}  // namespace

String DateTimeText(const host::DateTime& time) {
    return ToText(time.year) + u"/" + ToText(time.month) + u"/" + ToText(time.day) + u" " + TwoDigits(time.hour) +
           u":" + TwoDigits(time.minute) + u":" + TwoDigits(time.second);
}

std::optional<host::DateTime> ParseDateTime(StringView text) {
    std::size_t position = 0;
    int date[3] = {};
    int time[3] = {};
    if (!ReadGroup(text, position, u'/', date, 3)) return std::nullopt;
    if (position < text.size()) {
        if (text[position++] != u' ' || !ReadGroup(text, position, u':', time, 3)) return std::nullopt;
    }
    host::DateTime result{date[0], date[1], date[2], time[0], time[1], time[2], 0};
    if (position != text.size() || !IsValid(result)) return std::nullopt;
    return result;
}

std::int64_t SecondsBetween(const host::DateTime& earlier, const host::DateTime& later) {
    return SecondNumber(later) - SecondNumber(earlier);
}

}  // namespace kestrum
