// Numbers as the rules reckon with them: strict conversions that fail with the run-time errors 6 (overflow), 9 (out of
// range), 11 (division by zero) and 13 (type mismatch), the leading number of a text, number patterns.
// The decimal sign is a point in every direction.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/Error.h"
#include "host/String.h"

namespace kestrum {

/// The number that the whole of `text` is (blanks around it allowed), to the nearest integer, half to even. Error 13 if
/// it is no number, 6 if it does not fit.
std::int16_t ToInt16(StringView text);
std::int32_t ToInt32(StringView text);
/// Likewise without rounding.
double ToDouble(StringView text);

/// To the nearest integer, half to even. Error 6 if it does not fit.
std::int16_t ToInt16(double value);
std::int32_t ToInt32(double value);
/// A sum or product reckoned in 64 bits, as 32 bits. Error 6 if it does not fit.
std::int32_t ToInt32(std::int64_t value);

/// The number at the head of `text`, blanks ignored; 0 if there is none. Never fails.
double Val(StringView text);

/// Nearest integer, half to even.
double RoundHalfEven(double value);

/// a / b; error 11 if `b` is 0 (6 if both are).
double Div(double a, double b);

/// Decimal text of an integer.
String ToText(std::int64_t value);

/// `value` by a pattern of "0" (a digit that always shows) and "#" (one that shows unless it is a trailing zero), with
/// one point: "00.00", "0.##". Rounds half away from zero on the decimal digits. Other characters stand as they are
/// behind the digits ("0%" does not multiply).
String FormatPattern(double value, StringView pattern);

/// Element `number` of a list, counted from 1. Error 9 beyond its ends.
template <class List>
auto& ItemAt(List& list, std::int64_t number) {
    if (number < 1 || number > static_cast<std::int64_t>(list.size())) {
        throw host::Error(host::ErrorNumber::OutOfRange, u"ItemAt", u"Item number out of range");
    }
    return list[static_cast<std::size_t>(number - 1)];
}

}  // namespace kestrum
