// Where the text of a shape begins. The office does not tell how high a text came out, so its height is estimated from
// its paragraphs; that matters only for text set in the middle or at the bottom of its frame.
#pragma once

#include <optional>
#include <vector>

#include "host/String.h"

namespace kestrum::impress {

enum class TextAnchor { Top, Middle, Bottom };

/// A shape's frame in points.
struct TextFrame {
    double top = 0, width = 0, height = 0;
    double insetLeft = 0, insetTop = 0, insetRight = 0, insetBottom = 0;
    TextAnchor anchor = TextAnchor::Top;
};

struct TextParagraph {
    String text;
    double fontSize = 18;  ///< points
};

/// Top of the text in points from the slide's top.
double TextTopOf(const TextFrame& frame, const std::vector<TextParagraph>& paragraphs);

/// True for characters as wide as they are high (Chinese, Japanese, Korean).
bool IsWide(char16_t unit);

/// The office keeps a font, and a font size, for each of three kinds of script.
enum class Script { Latin, Asian, Complex };

/// The kind of the first letter of `text`; nullopt for a text of digits, signs and blanks.
std::optional<Script> ScriptOf(StringView text);

}  // namespace kestrum::impress
