#include "support/LetterCase.h"

namespace kestrum {
namespace {

/// Capital letters `first` to `last`, each `step` units behind the one before; the small letter is `distance` behind.
struct Range {
    char16_t first, last;
    int step, distance;

    bool Holds(int unit) const { return unit >= first && unit <= last && (unit - first) % step == 0; }
};

// The blocks of the Unicode character database, in its order.
constexpr Range kRanges[] = {
    {u'A', u'Z', 1, 32},     {0x00C0, 0x00D6, 1, 32}, {0x00D8, 0x00DE, 1, 32}, {0x0100, 0x012E, 2, 1},
    {0x0132, 0x0136, 2, 1},  {0x0139, 0x0147, 2, 1},  {0x014A, 0x0176, 2, 1},  {0x0178, 0x0178, 1, -121},
    {0x0179, 0x017D, 2, 1},  {0x0386, 0x0386, 1, 38}, {0x0388, 0x038A, 1, 37}, {0x038C, 0x038C, 1, 64},
    {0x038E, 0x038F, 1, 63}, {0x0391, 0x03A1, 1, 32}, {0x03A3, 0x03AB, 1, 32}, {0x0400, 0x040F, 1, 80},
    {0x0410, 0x042F, 1, 32}, {0x0460, 0x0480, 2, 1},  {0x048A, 0x04BE, 2, 1},  {0x04D0, 0x052E, 2, 1},
    {0x1E00, 0x1E94, 2, 1},  {0x1EA0, 0x1EFE, 2, 1},  {0xFF21, 0xFF3A, 1, 32},
};

template <class Change>
String Changed(StringView text, Change&& change) {
    String result(text);
    for (char16_t& unit : result) unit = static_cast<char16_t>(unit + change(unit));
    return result;
}

}  // namespace

String LowerLetters(StringView text) {
    return Changed(text, [](int unit) {
        for (const Range& range : kRanges)
            if (range.Holds(unit)) return range.distance;
        return 0;
    });
}

String UpperLetters(StringView text) {
    return Changed(text, [](int unit) {
        for (const Range& range : kRanges)
            if (range.Holds(unit - range.distance)) return -range.distance;
        return 0;
    });
}

}  // namespace kestrum
