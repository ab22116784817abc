#include "support/JsonReader.h"

#include "host/Error.h"
#include "support/Numbers.h"

namespace kestrum::JSON {
namespace {

constexpr StringView kLineEnd = u"\r\n";
constexpr std::size_t kExcerpt = 20;
constexpr std::int32_t kDeepest = 256;
/// The error text takes no message beyond this many characters: those that quote the rest of the text, one for each of
/// its faults, would grow with the square of its length.
constexpr std::size_t kMostErrors = 1'000'000;

StringView Rest(const Source& source) {
    return source.Next(StringView::npos);
}

StringView Tail(const Source& source) {
    return source.text.substr(source.text.size() - std::min(source.text.size(), kExcerpt));
}

void Complain(Source& source, StringView message, StringView excerpt) {
    if (source.errors.size() >= kMostErrors) return;
    source.errors += message;
    source.errors += excerpt;
    source.errors += kLineEnd;
}

void ComplainAt(Source& source, StringView what, StringView excerpt) {
    const String position = ToText(static_cast<std::int64_t>(source.position));
    Complain(source, String(what) + u" at position " + position + u" : ", excerpt);
}

/// A text that nests this deep is not read any further: its rest would only draw one failure a character.
[[noreturn]] void FailTooDeep(Source& source) {
    const String position = ToText(static_cast<std::int64_t>(source.position));
    source.position = source.text.size() + 1;
    throw host::Error(host::ErrorNumber::Overflow, u"JSON", u"Nested too deep at position " + position);
}

/// Counts a nested container for as long as it stands. Error 6 beyond the deepest, which saves the stack.
class Nested {
  public:
    explicit Nested(Source& source) : m_source(source) {
        if (source.depth >= kDeepest) FailTooDeep(source);
        ++m_source.depth;
    }
    ~Nested() { --m_source.depth; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

  private:
    Source& m_source;
};

enum class Step { Member, End };

/// What stands in front of the next member: a closing mark and the text's end end the container, one comma is stepped
/// over and not asked for.
Step NextMember(Source& source, char16_t closing, StringView missing) {
    SkipBlanks(source);
    if (source.Here() == closing && source.Inside()) {
        ++source.position;
        return Step::End;
    }
    if (source.Here() == u',') {
        ++source.position;
        SkipBlanks(source);
    } else if (!source.Inside()) {
        Complain(source, missing, Tail(source));
        return Step::End;
    }
    return Step::Member;
}

bool IsWhiteSpace(char16_t unit) {
    return unit == u'\r' || unit == u'\n' || unit == u'\t' || unit == u' ';
}

/// The comment state of SkipBlanks.
struct Comments {
    bool mark = false;
    bool inComment = false;
    bool longComment = false;

    void LineEnd() {
        if (longComment) return;
        mark = false;
        inComment = false;
    }
    void Slash() {
        if (longComment) {
            if (mark) *this = {};
        } else if (mark) {
            mark = false;
            inComment = true;
        } else {
            *this = {true, false, false};
        }
    }
    void Star() {
        if (mark) {
            *this = {false, true, true};
        } else {
            mark = true;
        }
    }
};

unsigned HexDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10u;
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10u;
    return 16;
}

/// The leading hexadecimal number of `digits`, 0 if there is none.
char16_t HexNumber(StringView digits) {
    unsigned value = 0;
    for (const char16_t unit : digits) {
        const unsigned digit = HexDigit(unit);
        if (digit > 15) break;
        value = value * 16 + digit;
    }
    return static_cast<char16_t>(value);
}

/// Reads what follows a backslash; an unknown escape stays in the text.
void ReadEscape(Source& source, String& out) {
    static constexpr StringView kMarks = u"\"\\/'bfnrt";
    static constexpr StringView kUnits = u"\"\\/'\b\f\n\r\t";
    if (!source.Inside()) return;
    if (source.Here() == u'u') {
        ++source.position;
        out += HexNumber(source.Next(4));
        source.position += 4;
        return;
    }
    const std::size_t mark = kMarks.find(source.Here());
    if (mark == StringView::npos) return;
    out += kUnits[mark];
    ++source.position;
}

/// Steps over a quote mark in a key. True if it closed and no ":" follows.
bool ClosesBadly(Source& source, bool& open) {
    open = !open;
    ++source.position;
    if (open) return false;
    SkipBlanks(source);
    return source.Here() != u':';
}

}  // namespace

void SkipBlanks(Source& source) {
    Comments state;
    for (; source.Inside(); ++source.position) {
        switch (source.Here()) {
            case u'\r':
            case u'\n':
                state.LineEnd();
                break;
            case u'\t':
            case u' ':
            case u'(':
            case u')':
                break;
            case u'/':
                state.Slash();
                break;
            case u'*':
                state.Star();
                break;
            default:
                if (!state.inComment) return;
        }
    }
}

std::shared_ptr<Dictionary> ReadObject(Source& source) {
    const Nested nested(source);
    auto result = std::make_shared<Dictionary>();
    SkipBlanks(source);
    if (source.Here() != u'{') {
        ComplainAt(source, u"Invalid Object", Rest(source));
        return result;
    }
    ++source.position;
    while (NextMember(source, u'}', u"Missing '}': ") == Step::Member) {
        const String key = ReadKey(source);
        try {
            result->Add(key, ReadValue(source));
        } catch (const host::Error& error) {
            Complain(source, error.Description() + u": ", key);
            break;
        }
    }
    return result;
}

std::shared_ptr<Collection> ReadArray(Source& source) {
    const Nested nested(source);
    auto result = std::make_shared<Collection>();
    SkipBlanks(source);
    if (source.Here() != u'[') {
        ComplainAt(source, u"Invalid Array", source.Next(kExcerpt));
        return result;
    }
    ++source.position;
    while (NextMember(source, u']', u"Missing ']': ") == Step::Member) {
        const std::size_t before = source.position;
        try {
            result->Add(ReadValue(source));
        } catch (const host::Error& error) {
            Complain(source, error.Description() + u": ", source.Next(kExcerpt));
            break;
        }
        // A broken "true" or "null" stays where it is: reading it again would never end.
        if (source.position == before && source.Inside()) break;
    }
    return result;
}

Value ReadValue(Source& source) {
    SkipBlanks(source);
    switch (source.Here()) {
        case u'{':
            return ReadObject(source);
        case u'[':
            return ReadArray(source);
        case u'"':
        case u'\'':
            return ReadString(source);
        case u't':
        case u'f':
            return ReadBoolean(source);
        case u'n':
            return ReadNull(source);
        default:
            return ReadNumber(source);
    }
}

String ReadString(Source& source) {
    SkipBlanks(source);
    const char16_t closing = source.Here();
    ++source.position;
    String out;
    while (source.Inside()) {
        const char16_t unit = source.Here();
        ++source.position;
        if (unit == closing) break;
        if (unit == u'\\') {
            ReadEscape(source, out);
        } else {
            out += unit;
        }
    }
    return out;
}

Value ReadNumber(Source& source) {
    SkipBlanks(source);
    String collected;
    for (; source.Inside(); ++source.position) {
        if (StringView(u"+-0123456789.eE").find(source.Here()) == StringView::npos) {
            const std::optional<Decimal> number = Decimal::Parse(collected);
            if (!number) throw host::Error(host::ErrorNumber::TypeMismatch, u"JSON", u"Type mismatch");
            return *number;
        }
        collected += source.Here();
    }
    return Empty{};
}

Value ReadBoolean(Source& source) {
    SkipBlanks(source);
    if (source.Next(4) == u"true") {
        source.position += 4;
        return true;
    }
    if (source.Next(5) == u"false") {
        source.position += 5;
    } else {
        ComplainAt(source, u"Invalid Boolean", Rest(source));
    }
    return false;
}

Value ReadNull(Source& source) {
    SkipBlanks(source);
    if (source.Next(4) == u"null") {
        source.position += 4;
        return Null{};
    }
    ComplainAt(source, u"Invalid null value", Rest(source));
    return Empty{};
}

String ReadKey(Source& source) {
    bool inDouble = false;
    bool inSingle = false;
    String key;
    SkipBlanks(source);
    while (source.Inside()) {
        const char16_t unit = source.Here();
        if (unit == u'"' || unit == u'\'') {
            if (ClosesBadly(source, unit == u'"' ? inDouble : inSingle)) {
                ComplainAt(source, u"Invalid Key", key);
                return key;
            }
            continue;
        }
        ++source.position;
        if (unit == u':' && !inDouble && !inSingle) return key;
        if (!IsWhiteSpace(unit)) key += unit;
    }
    return key;
}

}  // namespace kestrum::JSON
