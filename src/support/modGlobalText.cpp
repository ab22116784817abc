// Text routines of modGlobal.

#include <algorithm>

#include "support/modGlobal.h"

namespace kestrum::modGlobal {
namespace {

char16_t HexDigit(unsigned value) {
    return static_cast<char16_t>(value < 10 ? u'0' + value : u'A' + (value - 10));
}

/// Value of a hexadecimal digit; 0 for any other character.
unsigned HexValue(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10u;
    if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10u;
    return 0;
}

void AppendByte(String& out, unsigned byte) {
    out += HexDigit(byte >> 4);
    out += HexDigit(byte & 15);
}

}  // namespace

String EncodeHexText(StringView text) {
    if (text.empty()) return {};
    String out = u"&H";
    for (const char16_t unit : text) {
        AppendByte(out, unit & 0xFFu);
        AppendByte(out, static_cast<unsigned>(unit) >> 8);
    }
    return out;
}

String DecodeHexText(StringView text) {
    if (text.size() <= 2 || !text.starts_with(u"&H")) return {};
    String out;
    for (std::size_t i = 2; i + 4 <= text.size(); i += 4) {
        const unsigned low = HexValue(text[i]) * 16 + HexValue(text[i + 1]);
        const unsigned high = HexValue(text[i + 2]) * 16 + HexValue(text[i + 3]);
        out += static_cast<char16_t>(high << 8 | low);
    }
    return out;
}

String Replace(StringView text, StringView what, StringView with) {
    String out;
    for (std::size_t i = 0; i < text.size();) {
        if (!what.empty() && text.substr(i).starts_with(what)) {
            out += with;
            i += what.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

String Trim(StringView text) {
    while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    return String(text);
}

String LowerCase(StringView text) {
    String out(text);
    for (char16_t& unit : out) {
        if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
    }
    return out;
}

std::vector<String> Split(StringView text, StringView separator) {
    std::vector<String> pieces;
    for (std::size_t end = text.find(separator); end != StringView::npos; end = text.find(separator)) {
        pieces.emplace_back(text.substr(0, end));
        text.remove_prefix(end + separator.size());
    }
    pieces.emplace_back(text);
    return pieces;
}

String StripControlChars(StringView text) {
    String out(text);
    std::erase_if(out, [](char16_t unit) { return unit == 11 || unit == 9; });
    return out;
}

String StripUrlScheme(StringView url) {
    String out = Replace(Trim(url), u"http://", u"");
    if (out.starts_with(u"https://")) out.erase(0, 8);
    return out;
}

String GetUrlHost(StringView url) {
    const String rest = StripUrlScheme(url);
    return rest.substr(0, rest.find(u'/'));
}

String HtmlEscape(StringView text) {
    static constexpr StringView kSteps[][2] = {{u"&eq", u"="},      {u"&", u"&amp;"},  {u"\"", u"&quot;"},
                                               {u"'", u"&#039;"},   {u"<", u"&lt;"},   {u">", u"&gt;"},
                                               {u"  ", u" &nbsp;"}, {u"\r\n", u"<br>"}};
    String out(text);
    for (const auto& [what, with] : kSteps) out = Replace(out, what, with);
    return out;
}

}  // namespace kestrum::modGlobal
