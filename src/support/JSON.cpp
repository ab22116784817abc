#include "support/JSON.h"

#include <algorithm>
#include <vector>

#include "support/DateText.h"
#include "support/JsonReader.h"
#include "support/ValueText.h"
#include "support/cStringBuilder.h"

namespace kestrum::JSON {
namespace {

String Quoted(StringView text) {
    return u"\"" + String(text) + u"\"";
}

/// Writes one value; a visitor of Value. Knows the containers that it is in: one that holds itself is written as
/// nothing there, and so is one that nests deeper than the stack should go.
class Writer {
  public:
    String Write(const Value& value) { return std::visit(*this, value); }

    String operator()(const Null&) { return u"null"; }
    String operator()(bool value) { return value ? u"true" : u"false"; }
    String operator()(const String& value) { return Quoted(EscapeString(value)); }
    String operator()(const host::DateTime& value) { return Quoted(DateTimeText(value)); }
    String operator()(const std::shared_ptr<Dictionary>& value) { return WriteContainer(value); }
    String operator()(const std::shared_ptr<Collection>& value) { return WriteContainer(value); }
    String operator()(const std::shared_ptr<Array>& value) { return WriteContainer(value); }
    String operator()(const OtherObject&) { return {}; }
    template <class Number>
    String operator()(const Number& value) {
        return NumberText(value);
    }

  private:
    static constexpr std::size_t kDeepest = 1000;

    template <class Container>
    String WriteContainer(const std::shared_ptr<Container>& container) {
        const bool within = std::find(m_open.begin(), m_open.end(), container.get()) != m_open.end();
        if (!container || within || m_open.size() >= kDeepest) return {};
        m_open.push_back(container.get());
        String text = Content(*container);
        m_open.pop_back();
        return text;
    }

    String Content(Dictionary& dictionary);
    String Content(Collection& collection);
    String Content(const Array& array) { return WriteArray(array, 0); }
    String WriteArray(const Array& array, std::size_t dimension);

    std::vector<const void*> m_open;
};

String Writer::Content(Dictionary& dictionary) {
    cStringBuilder out;
    out.Append(u"{");
    for (const String& key : dictionary.keys()) {
        if (out.Length() > 1) out.Append(u",");
        out.Append(Quoted(key) + u":");
        out.Append(Write(dictionary.item(key)));
    }
    out.Append(u"}");
    return out.toString();
}

String Writer::Content(Collection& collection) {
    cStringBuilder out;
    out.Append(u"[");
    for (std::int32_t i = 1; i <= collection.Count(); ++i) {
        if (i > 1) out.Append(u",");
        out.Append(Write(collection.Item(i)));
    }
    out.Append(u"]");
    return out.toString();
}

/// Writes the dimension's bracket and what is in it. Elements are fetched by one index, so only those of an array with
/// one dimension are written; more dimensions leave the brackets alone.
String Writer::WriteArray(const Array& array, std::size_t dimension) {
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
            out.Append(Write(array.elements[place]));
        }
    }
    out.Append(u"]");
    return out.toString();
}

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
    return Writer{}.Write(value);
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
