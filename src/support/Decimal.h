// An exact decimal number of up to 28 significant digits and 28 places, as JSON texts hold them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/String.h"

namespace kestrum {

class Decimal {
  public:
    /// 0.
    Decimal() = default;
    explicit Decimal(std::int64_t value);
    /// Sign, digits, point, exponent, as a number is written ("-1.50e3"). None if the shape is wrong. Digits beyond the
    /// 28th are rounded, half to even. Error 6 if more than 28 digits stand before the point.
    static std::optional<Decimal> Parse(StringView text);
    /// Digits with a point, no exponent, no trailing zeros behind the point.
    String Text() const;
    double ToDouble() const;
    bool operator==(const Decimal&) const = default;

  private:
    bool m_negative = false;
    std::string m_digits = "0";  ///< without leading zeros
    std::int32_t m_scale = 0;    ///< digits behind the point
};

}  // namespace kestrum
