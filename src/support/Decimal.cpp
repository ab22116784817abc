#include "support/Decimal.h"

#include <algorithm>
#include <cstdlib>

#include "host/Error.h"

namespace kestrum {
namespace {

constexpr std::size_t kMostDigits = 28;
constexpr std::int64_t kMostPlaces = 28;

bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// A number as it is written, taken apart.
struct Written {
    bool negative = false;
    std::string digits;      ///< of the whole and the places
    std::int64_t scale = 0;  ///< digits behind the point
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

std::optional<Written> Read(StringView text) {
    Written number;
    number.negative = ReadSign(text);
    number.digits = ReadDigits(text);
    if (!text.empty() && text.front() == u'.') {
        text.remove_prefix(1);
        const std::string places = ReadDigits(text);
        number.digits += places;
        number.scale = static_cast<std::int64_t>(places.size());
    }
    if (number.digits.empty()) return std::nullopt;
    if (!text.empty() && (text.front() == u'e' || text.front() == u'E')) {
        text.remove_prefix(1);
        const bool down = ReadSign(text);
        std::string exponent = ReadDigits(text);
        if (exponent.empty()) return std::nullopt;
        DropLeadingZeros(exponent);
        const std::int64_t size = std::strtoll(exponent.substr(0, 9).c_str(), nullptr, 10);
        number.scale += down ? size : -size;
    }
    if (!text.empty()) return std::nullopt;
    return number;
}

/// Drops the last `count` digits, half to even.
void DropDigits(std::string& digits, std::size_t count) {
    if (count > digits.size()) digits.insert(0, count - digits.size(), '0');
    const std::string dropped = digits.substr(digits.size() - count);
    digits.resize(digits.size() - count);
    const std::string half = "5" + std::string(count - 1, '0');
    const bool odd = !digits.empty() && (digits.back() - '0') % 2 == 1;
    if (dropped < half || (dropped == half && !odd)) return;
    std::size_t i = digits.size();
    while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
    if (i > 0) {
        ++digits[i - 1];
    } else {
        digits.insert(0, "1");
    }
}

/// Error 6 if more digits stand before the point than a decimal has.
void CheckWhole(const Written& number) {
    const auto size = static_cast<std::int64_t>(number.digits.size());
    if (size - number.scale > static_cast<std::int64_t>(kMostDigits)) {
        throw host::Error(host::ErrorNumber::Overflow, u"Decimal", u"Overflow");
    }
}

/// Fits the digits into the limits; error 6 if the whole part does not.
void Fit(Written& number) {
    DropLeadingZeros(number.digits);
    if (number.digits.empty()) {
        number.scale = 0;
        return;
    }
    CheckWhole(number);
    const auto size = static_cast<std::int64_t>(number.digits.size());
    const std::int64_t surplus = std::max<std::int64_t>(
        {0, number.scale - kMostPlaces, number.scale > 0 ? size - static_cast<std::int64_t>(kMostDigits) : 0});
    if (surplus > size) {
        number.digits.clear();
    } else if (surplus > 0) {
        DropDigits(number.digits, static_cast<std::size_t>(surplus));
    }
    number.scale -= surplus;
    CheckWhole(number);  // rounding may have carried into a digit too many
}

}  // namespace

Decimal::Decimal(std::int64_t value) : m_negative(value < 0) {
    m_digits = std::to_string(value);
    if (m_negative) m_digits.erase(0, 1);
}

std::optional<Decimal> Decimal::Parse(StringView text) {
    std::optional<Written> number = Read(text);
    if (!number) return std::nullopt;
    Fit(*number);
    while (number->scale > 0 && !number->digits.empty() && number->digits.back() == '0') {
        number->digits.pop_back();
        --number->scale;
    }
    Decimal result;
    if (number->digits.empty()) return result;
    if (number->scale < 0) number->digits.append(static_cast<std::size_t>(-number->scale), '0');
    result.m_negative = number->negative;
    result.m_digits = number->digits;
    result.m_scale = static_cast<std::int32_t>(std::max<std::int64_t>(number->scale, 0));
    return result;
}

String Decimal::Text() const {
    std::string text = m_digits;
    const auto scale = static_cast<std::size_t>(m_scale);
    if (text.size() <= scale) text.insert(0, scale + 1 - text.size(), '0');
    if (scale > 0) text.insert(text.size() - scale, ".");
    if (m_negative) text.insert(0, "-");
    return String(text.begin(), text.end());
}

double Decimal::ToDouble() const {
    return std::strtod(host::ToUtf8(Text()).c_str(), nullptr);
}

}  // namespace kestrum
