#include "support/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>

namespace kestrum {
namespace {

[[noreturn]] void Overflow(StringView source) {
    throw host::Error(host::ErrorNumber::Overflow, String(source), u"Overflow");
}

[[noreturn]] void TypeMismatch(StringView source) {
    throw host::Error(host::ErrorNumber::TypeMismatch, String(source), u"Type mismatch");
}

bool IsBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r';
}

bool IsDigit(char unit) {
    return unit >= '0' && unit <= '9';
}

/// ASCII copy of the text without blanks at its ends; none if it holds anything else.
std::optional<std::string> Ascii(StringView text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    std::string ascii;
    for (const char16_t unit : text) {
        if (unit > 126) return std::nullopt;
        ascii += static_cast<char>(unit);
    }
    return ascii;
}

/// Length of the number at the head of `text`: sign, digits with a point, exponent; 0 if there is none.
std::size_t NumberLength(const std::string& text) {
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    const std::size_t first = i;
    while (i < text.size() && IsDigit(text[i])) ++i;
    std::size_t digits = i - first;
    if (i < text.size() && text[i] == '.') {
        const std::size_t point = ++i;
        while (i < text.size() && IsDigit(text[i])) ++i;
        digits += i - point;
    }
    if (digits == 0) return 0;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t k = i + 1;
        if (k < text.size() && (text[k] == '+' || text[k] == '-')) ++k;
        const std::size_t exponent = k;
        while (k < text.size() && IsDigit(text[k])) ++k;
        if (k > exponent) i = k;
    }
    return i;
}

/// The value of a text that is a number from end to end. Error 6 if a double cannot hold it.
double Convert(const std::string& number) {
    const char* begin = number.data() + (number.front() == '+' ? 1 : 0);
    double value = 0;
    const auto result = std::from_chars(begin, number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        const bool tiny = number.find("e-") != std::string::npos || number.find("E-") != std::string::npos;
        if (!tiny) Overflow(u"ToDouble");
        return 0;
    }
    return value;
}

template <class Integer>
Integer Narrow(double value, StringView source) {
    const double rounded = RoundHalfEven(value);
    const bool fits = rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
                      rounded <= static_cast<double>(std::numeric_limits<Integer>::max());
    if (!fits) Overflow(source);  // not-a-number does not fit either
    return static_cast<Integer>(rounded);
}

}  // namespace

double ToDouble(StringView text) {
    const std::optional<std::string> number = Ascii(text);
    if (!number || number->empty() || NumberLength(*number) != number->size()) TypeMismatch(u"ToDouble");
    return Convert(*number);
}

std::int16_t ToInt16(StringView text) {
    return Narrow<std::int16_t>(ToDouble(text), u"ToInt16");
}

std::int32_t ToInt32(StringView text) {
    return Narrow<std::int32_t>(ToDouble(text), u"ToInt32");
}

std::int16_t ToInt16(double value) {
    return Narrow<std::int16_t>(value, u"ToInt16");
}

std::int32_t ToInt32(double value) {
    return Narrow<std::int32_t>(value, u"ToInt32");
}

std::int32_t ToInt32(std::int64_t value) {
    const bool fits =
        value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
    if (!fits) Overflow(u"ToInt32");
    return static_cast<std::int32_t>(value);
}

double Val(StringView text) {
    std::string dense;
    for (const char16_t unit : text) {
        if (IsBlank(unit)) continue;
        if (unit > 126) break;
        dense += static_cast<char>(unit);
    }
    dense.resize(NumberLength(dense));
    if (dense.empty()) return 0;
    double value = 0;
    const char* begin = dense.data() + (dense.front() == '+' ? 1 : 0);
    std::from_chars(begin, dense.data() + dense.size(), value);
    return value;
}

double RoundHalfEven(double value) {
    return std::nearbyint(value);  // nothing in the program leaves the default rounding mode
}

double Div(double a, double b) {
    if (b != 0) return a / b;
    if (a == 0) Overflow(u"Div");
    throw host::Error(host::ErrorNumber::DivisionByZero, u"Div", u"Division by zero");
}

String ToText(std::int64_t value) {
    const std::string text = std::to_string(value);
    return String(text.begin(), text.end());
}

namespace {

/// A non-negative number as decimal digits: `digits` with the point after the first `point` of them (which may lie
/// outside the digits). 15 digits are what a double tells exactly.
struct Digits {
    std::string digits;
    int point = 0;
};

Digits DigitsOf(double value) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.14e", std::fabs(value));
    const std::string text = buffer;
    const std::size_t e = text.find('e');
    Digits result{text.substr(0, 1) + text.substr(2, e - 2), std::stoi(text.substr(e + 1)) + 1};
    if (result.point < 1) {
        result.digits.insert(0, static_cast<std::size_t>(1 - result.point), '0');
        result.point = 1;
    }
    return result;
}

/// Cuts to `places` digits behind the point, half away from zero.
void RoundDigits(Digits& number, int places) {
    const auto keep = static_cast<std::size_t>(number.point) + static_cast<std::size_t>(places);
    if (number.digits.size() <= keep) {
        number.digits.append(keep - number.digits.size(), '0');
        return;
    }
    const bool up = number.digits[keep] >= '5';
    number.digits.resize(keep);
    if (!up) return;
    std::size_t i = keep;
    while (i > 0 && number.digits[i - 1] == '9') number.digits[--i] = '0';
    if (i > 0) {
        ++number.digits[i - 1];
    } else {
        number.digits.insert(0, "1");
        ++number.point;
    }
}

struct Pattern {
    std::size_t wholeZeros = 0;   ///< digits in front of the point that always show
    std::size_t places = 0;       ///< most digits behind the point
    std::size_t fixedPlaces = 0;  ///< of these, how many always show
    StringView rest;
};

Pattern ReadPattern(StringView pattern) {
    Pattern result;
    std::size_t i = 0;
    for (; i < pattern.size() && (pattern[i] == u'0' || pattern[i] == u'#'); ++i) {
        if (pattern[i] == u'0') ++result.wholeZeros;
    }
    if (i < pattern.size() && pattern[i] == u'.') {
        for (++i; i < pattern.size() && (pattern[i] == u'0' || pattern[i] == u'#'); ++i) {
            ++result.places;
            if (pattern[i] == u'0') result.fixedPlaces = result.places;
        }
    }
    result.rest = pattern.substr(i);
    return result;
}

}  // namespace

String FormatPattern(double value, StringView pattern) {
    const Pattern shape = ReadPattern(pattern);
    Digits number = DigitsOf(value);
    RoundDigits(number, static_cast<int>(shape.places));
    std::string whole = number.digits.substr(0, static_cast<std::size_t>(number.point));
    std::string places = number.digits.substr(static_cast<std::size_t>(number.point));
    while (places.size() > shape.fixedPlaces && places.back() == '0') places.pop_back();
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
    if (whole.size() < shape.wholeZeros) whole.insert(0, shape.wholeZeros - whole.size(), '0');
    const bool zero = (whole + places).find_first_not_of('0') == std::string::npos;
    std::string text = (value < 0 && !zero ? "-" : "") + whole;
    if (!places.empty()) text += "." + places;
    return String(text.begin(), text.end()) + String(shape.rest);
}

}  // namespace kestrum
