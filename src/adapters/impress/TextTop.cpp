#include "adapters/impress/TextTop.h"

#include <algorithm>
#include <cmath>

namespace kestrum::impress {

namespace {

constexpr double kLineHeight = 1.2;   // of the font size, as common fonts have it
constexpr double kNarrowWidth = 0.5;  // mean width of a Latin letter, of the font size

double HeightOf(const TextParagraph& paragraph, double width) {
    double length = 0;
    for (const char16_t unit : paragraph.text) length += (IsWide(unit) ? 1 : kNarrowWidth) * paragraph.fontSize;
    const double lines = width > 0 ? std::max(1.0, std::ceil(length / width)) : 1.0;
    return lines * kLineHeight * paragraph.fontSize;
}

}  // namespace

bool IsWide(char16_t unit) {
    return (unit >= 0x1100 && unit <= 0x11FF) || (unit >= 0x2E80 && unit <= 0xD7FF) ||
           (unit >= 0xF900 && unit <= 0xFAFF) || (unit >= 0xFF00 && unit <= 0xFF60);
}

std::optional<Script> ScriptOf(StringView text) {
    for (const char16_t unit : text) {
        if (IsWide(unit)) return Script::Asian;
        // Hebrew to Thai and Tibetan, and the presentation forms of Hebrew and Arabic.
        const bool complex = (unit >= 0x0590 && unit <= 0x109F) || (unit >= 0x1780 && unit <= 0x18AF) ||
                             (unit >= 0xFB1D && unit <= 0xFDFF) || (unit >= 0xFE70 && unit <= 0xFEFE);
        if (complex) return Script::Complex;
        const bool latin =
            (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z') || (unit >= 0x00C0 && unit < 0x0590);
        if (latin) return Script::Latin;
    }
    return std::nullopt;
}

double TextTopOf(const TextFrame& frame, const std::vector<TextParagraph>& paragraphs) {
    if (frame.anchor == TextAnchor::Top) return frame.top + frame.insetTop;
    const double width = frame.width - frame.insetLeft - frame.insetRight;
    double height = 0;
    for (const auto& paragraph : paragraphs) height += HeightOf(paragraph, width);
    const double bottomTop = frame.top + frame.height - frame.insetBottom - height;
    if (frame.anchor == TextAnchor::Bottom) return bottomTop;
    return (frame.top + frame.insetTop + bottomTop) / 2;
}

}  // namespace kestrum::impress
