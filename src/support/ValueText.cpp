#include "support/ValueText.h"

#include <charconv>
#include <type_traits>

#include "support/Numbers.h"

namespace kestrum {
namespace {

/// Independent of the locale, which the desktop's toolkit sets to the user's.
template <class Number>
String FloatText(Number value) {
    constexpr int kDigits = std::is_same_v<Number, float> ? 7 : 15;
    char buffer[40];
    const std::to_chars_result end =
        std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value), std::chars_format::general, kDigits);
    String text(buffer, end.ptr);
    for (char16_t& unit : text) {
        if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
    }
    return text;
}

struct Text {
    String operator()(std::uint8_t value) const { return ToText(value); }
    String operator()(std::int16_t value) const { return ToText(value); }
    String operator()(std::int32_t value) const { return ToText(value); }
    String operator()(float value) const { return FloatText(value); }
    String operator()(double value) const { return FloatText(value); }
    String operator()(const Currency& value) const { return Decimal(value.tenThousandths, 4).Text(); }
    String operator()(const Decimal& value) const { return value.Text(); }
    String operator()(bool) const { return {}; }
    template <class Other>
    String operator()(const Other&) const {
        return {};
    }
};

}  // namespace

String NumberText(const Value& value) {
    return std::visit(Text{}, value);
}

}  // namespace kestrum
