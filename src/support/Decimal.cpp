#include "support/Decimal.h"

#include <algorithm>
#include <cstdlib>

#include "host/Error.h"

namespace kestrum {
namespace {

/// Power of ten of the first digit at which numbers end.
constexpr std::int64_t kMostExponent = 1'000'000'000;
/// Zeros behind the point that Text writes out.
constexpr std::int64_t kMostLeadingZeros = 28;

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// A number as it is written, taken apart: `digits` times 10 to the power of `exponent`.
struct Written {
    bool negative = false;
    std::string digits;
    std::int64_t exponent = 0;
};

void DropLeadingZeros(std::string& digits) {
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
}

bool ReadSign(StringView& text) {
    const bool negative = !text.empty() && text.front() == u'-';
    if (negative || (!text.empty() && text.front() == u'+')) text.remove_prefix(1);
    return negative;
}

std::string ReadDigits(StringView& text) {
    std::string digits;
    while (!text.empty() && IsDigit(text.front())) {
        digits += static_cast<char>(text.front());
        text.remove_prefix(1);
    }
    return digits;
}

/// The number behind the "e". One of more than 12 digits is as good as the largest of 12: no text is long enough to
/// balance it with digits.
std::optional<std::int64_t> ReadExponent(StringView& text) {
    const bool negative = ReadSign(text);
    std::string digits = ReadDigits(text);
    if (digits.empty()) return std::nullopt;
    DropLeadingZeros(digits);
    if (digits.size() > 12) digits.assign(12, '9');
    const std::int64_t size = std::strtoll(digits.c_str(), nullptr, 10);
    return negative ? -size : size;
}

std::optional<Written> Read(StringView text) {
    Written number;
    number.negative = ReadSign(text);
    number.digits = ReadDigits(text);
    if (!text.empty() && text.front() == u'.') {
        text.remove_prefix(1);
        const std::string places = ReadDigits(text);
        number.digits += places;
        number.exponent = -static_cast<std::int64_t>(places.size());
    }
    if (number.digits.empty()) return std::nullopt;
    if (!text.empty() && (text.front() == u'e' || text.front() == u'E')) {
        text.remove_prefix(1);
        const std::optional<std::int64_t> exponent = ReadExponent(text);
        if (!exponent) return std::nullopt;
        number.exponent += *exponent;
    }
    if (!text.empty()) return std::nullopt;
    return number;
}

/// Keeps the first `count` digits, half to even. A carry out of the first digit leaves "1" and zeros, one digit more.
void RoundTo(std::string& digits, std::size_t count) {
    const char next = digits[count];
    const bool beyondHalf = digits.find_first_not_of('0', count + 1) != std::string::npos;
    digits.resize(count);
    const bool odd = (digits.back() - '0') % 2 == 1;
    if (next < '5' || (next == '5' && !beyondHalf && !odd)) return;
    std::size_t i = count;
    while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
    if (i > 0) {
        ++digits[i - 1];
    } else {
        digits.insert(0, "1");
    }
}

std::string ExponentText(std::int64_t exponent) {
    return (exponent < 0 ? "E-" : "E+") + std::to_string(std::abs(exponent));
}

}  // namespace

Decimal::Decimal(std::int64_t value, std::int32_t places) : m_negative(value < 0) {
    std::string digits = std::to_string(value);
    if (m_negative) digits.erase(0, 1);
    SetDigits(std::move(digits), -places);
}

std::optional<Decimal> Decimal::Parse(StringView text) {
    std::optional<Written> number = Read(text);
    if (!number) return std::nullopt;
    Decimal result;
    result.m_negative = number->negative;
    result.SetDigits(std::move(number->digits), number->exponent);
    return result;
}

void Decimal::SetDigits(std::string digits, std::int64_t exponent) {
    DropLeadingZeros(digits);
    if (digits.size() > kMostDigits) {
        exponent += static_cast<std::int64_t>(digits.size() - kMostDigits);
        RoundTo(digits, kMostDigits);
    }
    const std::size_t last = digits.find_last_not_of('0');
    const std::int64_t first = exponent + static_cast<std::int64_t>(digits.size()) - 1;
    if (last == std::string::npos || first < -kMostExponent) {
        *this = {};
        return;
    }
    if (first > kMostExponent) throw host::Error(host::ErrorNumber::Overflow, u"Decimal", u"Overflow");
    exponent += static_cast<std::int64_t>(digits.size() - last - 1);
    digits.resize(last + 1);
    m_digits = std::move(digits);
    m_exponent = static_cast<std::int32_t>(exponent);
}

String Decimal::Text() const {
    if (m_digits.empty()) return u"0";
    std::string text = m_digits;
    const auto size = static_cast<std::int64_t>(text.size());
    const std::int64_t whole = size + m_exponent;  // digits before the point; below 0, zeros behind it
    if (whole > static_cast<std::int64_t>(kMostDigits) || whole < -kMostLeadingZeros) {
        if (size > 1) text.insert(1, ".");
        text += ExponentText(whole - 1);
    } else if (whole >= size) {
        text.append(static_cast<std::size_t>(whole - size), '0');
    } else if (whole > 0) {
        text.insert(static_cast<std::size_t>(whole), ".");
    } else {
        text.insert(0, "0." + std::string(static_cast<std::size_t>(-whole), '0'));
    }
    if (m_negative) text.insert(0, "-");
    return String(text.begin(), text.end());
}

}  // namespace kestrum
