#include "support/JSON.h"

#include <cstdio>
#include <type_traits>

#include "support/DateText.h"
#include "support/JsonReader.h"
#include "support/Numbers.h"
#include "support/cStringBuilder.h"

namespace kestrum::JSON {
namespace {

String Quoted(StringView text) {
    return u"\"" + String(text) + u"\"";
}

/// Default text of a floating point number to the digits that its type tells.
template <class Number>
String FloatText(Number value) {
    constexpr int kDigits = std::is_same_v<Number, float> ? 7 : 15;
    char buffer[40];
    const int length = std::snprintf(buffer, sizeof buffer, "%.*G", kDigits, static_cast<double>(value));
    return String(buffer, buffer + length);
}

String CurrencyText(const Currency& amount) {
    return FormatPattern(static_cast<double>(amount.tenThousandths) / 10000.0, u"0.####");
}

String DictionaryText(Dictionary& dictionary) {
    cStringBuilder out;
    out.Append(u"{");
    for (const String& key : dictionary.keys()) {
        if (out.Length() > 1) out.Append(u",");
        out.Append(Quoted(key) + u":");
        out.Append(ToJsonText(dictionary.item(key)));
    }
    out.Append(u"}");
    return out.toString();
}

String CollectionText(Collection& collection) {
    cStringBuilder out;
    out.Append(u"[");
    for (std::int32_t i = 1; i <= collection.Count(); ++i) {
        if (i > 1) out.Append(u",");
        out.Append(ToJsonText(collection.Item(i)));
    }
    out.Append(u"]");
    return out.toString();
}

/// Writes the dimension's bracket and what is in it. Elements are fetched by one index, so only those of an array with
/// one dimension are written; more dimensions leave the brackets alone.
String WriteArray(const Array& array, std::size_t dimension) {
    if (dimension == array.dimensions.size()) return {};
    const bool single = array.dimensions.size() == 1;
    const Array::Bounds& bounds = array.dimensions[dimension];
    cStringBuilder out;
    out.Append(u"[");
    for (std::int64_t i = bounds.lower; i <= bounds.upper; ++i) {
        if (i > bounds.lower) out.Append(u",");
        const auto place = static_cast<std::size_t>(i - bounds.lower);
        if (!single) {
            out.Append(WriteArray(array, dimension + 1));
        } else if (i >= 0 && place < array.elements.size()) {
            out.Append(ToJsonText(array.elements[place]));
        }
    }
    out.Append(u"]");
    return out.toString();
}

struct Writer {
    String operator()(const Empty&) const { return {}; }
    String operator()(const Null&) const { return u"null"; }
    String operator()(bool value) const { return value ? u"true" : u"false"; }
    String operator()(std::uint8_t value) const { return ToText(value); }
    String operator()(std::int16_t value) const { return ToText(value); }
    String operator()(std::int32_t value) const { return ToText(value); }
    String operator()(float value) const { return FloatText(value); }
    String operator()(double value) const { return FloatText(value); }
    String operator()(const Currency& value) const { return CurrencyText(value); }
    String operator()(const Decimal& value) const { return value.Text(); }
    String operator()(const String& value) const { return Quoted(EscapeString(value)); }
    String operator()(const host::DateTime& value) const { return Quoted(DateTimeText(value)); }
    String operator()(const std::shared_ptr<Dictionary>& value) const { return value ? DictionaryText(*value) : u""; }
    String operator()(const std::shared_ptr<Collection>& value) const { return value ? CollectionText(*value) : u""; }
    String operator()(const std::shared_ptr<Array>& value) const { return value ? WriteArray(*value, 0) : u""; }
    String operator()(const OtherObject&) const { return {}; }
};

char16_t HexDigit(unsigned value) {
    return static_cast<char16_t>(value < 10 ? u'0' + value : u'A' + (value - 10));
}

}  // namespace

Value ParseJson(support::State& state, StringView text) {
    state.jsonErrors.clear();
    Source source{text, 1, state.jsonErrors, 0};
    SkipBlanks(source);
    if (source.Here() == u'{') return ReadObject(source);
    if (source.Here() == u'[') return ReadArray(source);
    state.jsonErrors = u"Invalid JSON";
    return Empty{};
}

const String& GetJsonErrors(const support::State& state) {
    return state.jsonErrors;
}

String ToJsonText(const Value& value) {
    return std::visit(Writer{}, value);
}

String EscapeString(StringView text) {
    static constexpr StringView kUnits = u"\"\\/\b\f\n\r\t";
    static constexpr StringView kMarks = u"\"\\/bfnrt";
    cStringBuilder out;
    for (const char16_t unit : text) {
        const std::size_t known = kUnits.find(unit);
        if (known != StringView::npos) {
            out.Append(String{u'\\', kMarks[known]});
        } else if (unit >= 32 && unit <= 126) {
            out.Append(StringView(&unit, 1));
        } else {
            const unsigned code = unit;
            out.Append(String{u'\\', u'u', HexDigit(code >> 12), HexDigit(code >> 8 & 15), HexDigit(code >> 4 & 15),
                              HexDigit(code & 15)});
        }
    }
    return out.toString();
}

}  // namespace kestrum::JSON
