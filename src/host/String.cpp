#include "host/String.h"

#include <cstdint>
#include <type_traits>

namespace kestrum::host {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void AppendUtf16(String& out, char32_t c) {
    if (c < 0x10000) {
        out += static_cast<char16_t>(c);
    } else {
        out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
        out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
}

/// Length of the sequence that `lead` opens and its payload bits; 0 when it opens none.
int SequenceLength(unsigned char lead, char32_t& bits) {
    if (lead < 0x80) return bits = lead, 1;
    if (lead >= 0xC2 && lead <= 0xDF) return bits = lead & 0x1F, 2;
    if (lead >= 0xE0 && lead <= 0xEF) return bits = lead & 0x0F, 3;
    if (lead >= 0xF0 && lead <= 0xF4) return bits = lead & 0x07, 4;
    return 0;
}

/// Reads one character at `i`, and its length in bytes; false when the bytes there are not valid.
bool DecodeAt(std::string_view bytes, std::size_t i, char32_t& c, int& length) {
    length = SequenceLength(static_cast<unsigned char>(bytes[i]), c);
    if (length == 0 || i + static_cast<std::size_t>(length) > bytes.size()) return false;
    for (int k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(bytes[i + static_cast<std::size_t>(k)]);
        if ((next & 0xC0) != 0x80) return false;
        c = (c << 6) | (next & 0x3F);
    }
    const bool overlong = (length == 3 && c < 0x800) || (length == 4 && c < 0x10000);
    return !overlong && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF);
}

/// Where the run of ASCII characters that begins at `i` ends; texts are mostly that.
template <class Text>
std::size_t AsciiEnd(const Text& text, std::size_t i) {
    while (i < text.size() && static_cast<std::make_unsigned_t<typename Text::value_type>>(text[i]) < 0x80) ++i;
    return i;
}

}  // namespace

std::string ToUtf8(StringView text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const StringView ascii = text.substr(i, AsciiEnd(text, i) - i);
        out.append(ascii.begin(), ascii.end());
        i += ascii.size();
        if (i == text.size()) break;
        const char32_t unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(text[i + 1]) - 0xDC00));
            ++i;
        } else {
            AppendUtf8(out, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
        }
    }
    return out;
}

String FromUtf8(std::string_view bytes) {
    String out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const std::string_view ascii = bytes.substr(i, AsciiEnd(bytes, i) - i);
        out.append(ascii.begin(), ascii.end());
        i += ascii.size();
        if (i == bytes.size()) break;
        char32_t c = 0;
        int length = 0;
        if (DecodeAt(bytes, i, c, length)) {
            AppendUtf16(out, c);
            i += static_cast<std::size_t>(length);
        } else {
            AppendUtf16(out, kReplacement);
            ++i;
        }
    }
    return out;
}

bool IsUtf8(std::string_view bytes) {
    char32_t c = 0;
    int length = 0;
    for (std::size_t i = AsciiEnd(bytes, 0); i < bytes.size(); i = AsciiEnd(bytes, i)) {
        if (!DecodeAt(bytes, i, c, length)) return false;
        i += static_cast<std::size_t>(length);
    }
    return true;
}

}  // namespace kestrum::host
