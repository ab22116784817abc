#include "publish/CaptionText.h"

#include <array>
#include <optional>
#include <vector>

#include "support/modGlobal.h"

namespace kestrum::publish {

namespace {

constexpr StringView kArrow = u"-->";

/// Windows-1252 from 0x80 on; elsewhere its bytes are the code units.
constexpr std::array<char16_t, 32> kWestern = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                               0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

String FromWestern(const std::string& bytes) {
    String text;
    for (const char byte : bytes) {
        const auto unit = static_cast<unsigned char>(byte);
        text += unit >= 0x80 && unit < 0xA0 ? kWestern[unit - 0x80u] : static_cast<char16_t>(unit);
    }
    return text;
}

String FromUtf16(const std::string& bytes, std::size_t highByte) {
    String text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto high = static_cast<unsigned char>(bytes[i + highByte]);
        const auto low = static_cast<unsigned char>(bytes[i + 1 - highByte]);
        text += static_cast<char16_t>(high << 8 | low);
    }
    return text;
}

String Decoded(const std::string& bytes) {
    if (bytes.starts_with("\xFF\xFE")) return FromUtf16(bytes, 1);
    if (bytes.starts_with("\xFE\xFF")) return FromUtf16(bytes, 0);
    const bool marked = bytes.starts_with("\xEF\xBB\xBF");
    const String text = host::FromUtf8(marked ? bytes.substr(3) : bytes);
    // What is no UTF-8 leaves a replacement character that the file did not have.
    const bool broken = text.find(u'\uFFFD') != String::npos && bytes.find("\xEF\xBF\xBD") == std::string::npos;
    return broken && !marked ? FromWestern(bytes) : text;
}

std::vector<String> Lines(const String& text) {
    const String plain = modGlobal::Replace(modGlobal::Replace(text, u"\r\n", u"\n"), u"\r", u"\n");
    return modGlobal::Split(modGlobal::Replace(plain, StringView(u"\0", 1), u""), u"\n");
}

/// Walks over a time.
class TimeReader {
  public:
    explicit TimeReader(StringView text) : m_text(text) {}

    /// A whole number of up to `most` digits.
    std::optional<std::int64_t> Number(std::size_t most) {
        std::size_t digits = 0;
        std::int64_t value = 0;
        for (; digits < m_text.size() && m_text[digits] >= u'0' && m_text[digits] <= u'9'; ++digits)
            if (digits < most) value = value * 10 + (m_text[digits] - u'0');
        if (digits == 0 || digits > most) return std::nullopt;
        m_text.remove_prefix(digits);
        m_digits = digits;
        return value;
    }
    bool Take(StringView oneOf) {
        if (m_text.empty() || oneOf.find(m_text.front()) == StringView::npos) return false;
        m_text.remove_prefix(1);
        return true;
    }
    /// How many digits the last number had.
    std::size_t Digits() const { return m_digits; }
    /// Settings may follow a time, behind a blank.
    bool AtEnd() const { return m_text.empty() || m_text.front() == u' ' || m_text.front() == u'\t'; }

  private:
    StringView m_text;
    std::size_t m_digits = 0;
};

/// ms of "01:02:03,456", "02:03.4" or "1:02:03"; nothing for what is no time.
std::optional<std::int64_t> Time(const String& text) {
    TimeReader reader(text);
    std::vector<std::int64_t> parts;
    do {
        const auto part = reader.Number(4);
        if (!part || parts.size() == 3) return std::nullopt;
        parts.push_back(*part);
    } while (reader.Take(u":"));
    if (parts.size() == 2) parts.insert(parts.begin(), 0);
    if (parts.size() != 3 || parts[1] > 59 || parts[2] > 59) return std::nullopt;
    std::int64_t ms = 0;
    if (reader.Take(u".,")) {
        const auto fraction = reader.Number(3);
        if (!fraction) return std::nullopt;
        ms = *fraction * (reader.Digits() == 1 ? 100 : reader.Digits() == 2 ? 10 : 1);
    }
    if (!reader.AtEnd()) return std::nullopt;
    return ((parts[0] * 60 + parts[1]) * 60 + parts[2]) * 1000 + ms;
}

String Digits(std::int64_t value, std::size_t least) {
    const std::string text = std::to_string(value);
    return host::FromUtf8(std::string(least - std::min(least, text.size()), '0') + text);
}

String TimeText(std::int64_t ms) {
    return Digits(ms / 3600000, 2) + u":" + Digits(ms / 60000 % 60, 2) + u":" + Digits(ms / 1000 % 60, 2) + u"." +
           Digits(ms % 1000, 3);
}

/// The length of the tag at the head of `text` that WebVTT knows as well; 0 for none.
std::size_t KnownTag(StringView text) {
    for (const StringView tag : {u"<b>", u"</b>", u"<i>", u"</i>", u"<u>", u"</u>"})
        if (text.starts_with(tag)) return tag.size();
    return 0;
}

/// The length of what only looks: "<font color=red>", "{\an8}"; 0 for none.
std::size_t Decoration(StringView text) {
    const bool font = text.starts_with(u"<font") || text.starts_with(u"</font");
    if (!font && !text.starts_with(u"{\\")) return 0;
    const std::size_t end = text.find(font ? u'>' : u'}');
    return end == StringView::npos ? 0 : end + 1;
}

/// SubRip has no escapes: a "<" or "&" in it is meant.
String AsWebVtt(StringView line) {
    String out;
    while (!line.empty()) {
        const std::size_t known = KnownTag(line);
        const std::size_t dropped = known == 0 ? Decoration(line) : 0;
        const char16_t unit = line.front();
        if (known > 0) out += line.substr(0, known);
        if (known == 0 && dropped == 0)
            out += unit == u'&' ? String(u"&amp;") : unit == u'<' ? String(u"&lt;") : String(1, unit);
        line.remove_prefix(known + dropped > 0 ? known + dropped : 1);
    }
    return out;
}

bool IsNumber(const String& line) {
    return !line.empty() && line.find_first_not_of(u"0123456789") == String::npos;
}

class Converter {
  public:
    explicit Converter(CaptionFormat format) : m_format(format) { m_result.webVtt = u"WEBVTT\n\n"; }

    void Take(const String& raw) {
        const String line = modGlobal::Trim(raw);
        const std::size_t arrow = line.find(kArrow);
        if (arrow != String::npos) {
            // A file that lacks the empty line has the number of this cue at the end of the one before.
            if (m_format == CaptionFormat::SubRip && m_words.size() > 1 && IsNumber(m_words.back())) m_words.pop_back();
            End();
            Begin(line, arrow);
        } else if (line.empty()) {
            End();
        } else if (m_begin) {
            m_words.push_back(line);
        }
    }

    CaptionText Finish() {
        End();
        return m_result;
    }

  private:
    void Begin(const String& line, std::size_t arrow) {
        const auto begin = Time(modGlobal::Trim(line.substr(0, arrow)));
        const auto end = Time(modGlobal::Trim(line.substr(arrow + kArrow.size())));
        if (begin && end && *begin < *end) {
            m_begin = begin;
            m_end = *end;
        } else {
            ++m_result.leftOut;
        }
    }

    void End() {
        String words;
        for (const String& line : m_words) words += (m_format == CaptionFormat::SubRip ? AsWebVtt(line) : line) + u"\n";
        if (m_begin && !modGlobal::Trim(modGlobal::Replace(words, u"\n", u" ")).empty()) {
            m_result.webVtt += TimeText(*m_begin) + u" --> " + TimeText(m_end) + u"\n" + words + u"\n";
            ++m_result.cues;
        }
        m_begin.reset();
        m_words.clear();
    }

    CaptionFormat m_format;
    CaptionText m_result;
    std::optional<std::int64_t> m_begin;  ///< of the cue at hand, ms
    std::int64_t m_end = 0;
    std::vector<String> m_words;
};

}  // namespace

CaptionText ReadCaptions(const std::string& bytes, CaptionFormat format) {
    Converter converter(format);
    for (const String& line : Lines(Decoded(bytes))) converter.Take(line);
    return converter.Finish();
}

}  // namespace kestrum::publish
