#include "ui/Names.h"

#include <algorithm>

namespace kestrum::ui {
namespace {

char16_t Lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

}  // namespace

bool SameName(StringView a, StringView b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t x, char16_t y) { return Lower(x) == Lower(y); });
}

}  // namespace kestrum::ui
