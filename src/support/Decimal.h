// An exact decimal number of up to 28 significant digits, as JSON texts hold them: every text that has the shape of a
// number has a value, whatever its size; only digits beyond the 28th are rounded away.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/String.h"

namespace kestrum {

class Decimal {
  public:
    static constexpr std::size_t kMostDigits = 28;

    /// 0.
    Decimal() = default;
    /// `value` divided by 10 to the power of `places`.
    explicit Decimal(std::int64_t value, std::int32_t places = 0);
    /// Sign, digits, point, exponent, as a number is written ("-1.50e3"). None if the shape is wrong. Digits beyond the
    /// 28th are rounded, half to even. Error 6 from 10 to the power of a thousand million on; as far below 1 it is 0.
    static std::optional<Decimal> Parse(StringView text);
    /// Digits with a point, no trailing zeros behind it. With an exponent ("1.5E+30") if more than 28 zeros or digits
    /// would stand before the first digit or the point. Reads back equal.
    String Text() const;
    bool operator==(const Decimal&) const = default;

  private:
    void SetDigits(std::string digits, std::int64_t exponent);

    bool m_negative = false;
    std::string m_digits;         ///< without zeros at either end; none is 0
    std::int32_t m_exponent = 0;  ///< power of ten of the last digit
};

}  // namespace kestrum
