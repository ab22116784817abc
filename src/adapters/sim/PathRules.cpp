#include "adapters/sim/PathRules.h"

#include <algorithm>

namespace kestrum::sim {

namespace {

char16_t Folded(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

}  // namespace

bool PathRules::Less::operator()(const String& a, const String& b) const {
    if (!foldCase) return a < b;
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char16_t x, char16_t y) { return Folded(x) < Folded(y); });
}

bool PathRules::Same(StringView a, StringView b) const {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [this](char16_t x, char16_t y) { return x == y || (m_windows && Folded(x) == Folded(y)); });
}

bool PathRules::IsNetworkPath(StringView path) const {
    return path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1]);
}

bool PathRules::HasDrive(StringView path) const {
    return m_windows && path.size() >= 2 && path[1] == u':';
}

String PathRules::Absolute(StringView path, StringView current) const {
    if (HasDrive(path) || IsNetworkPath(path)) return String(path);
    if (!IsSeparator(path.front())) return String(current) + Separator() + String(path);
    return (m_windows ? String(current.substr(0, 2)) : String()) + String(path);
}

String PathRules::Normal(StringView path, StringView current) const {
    if (path.empty()) return {};
    String normal;
    for (const char16_t unit : Absolute(path, current)) {
        const char16_t written = IsSeparator(unit) ? Separator() : unit;
        if (written != Separator() || normal.empty() || normal.back() != Separator()) normal.push_back(written);
    }
    if (normal.size() > 1 && normal.back() == Separator()) normal.pop_back();
    return IsNetworkPath(path) ? String(1, Separator()) + normal : normal;
}

String PathRules::ParentOf(const String& normal) const {
    const std::size_t cut = normal.find_last_of(Separator());
    if (IsRoot(normal) || cut == String::npos || cut == 0) return IsRoot(normal) ? normal : Root();
    return normal.substr(0, cut);
}

String PathRules::NameOf(const String& normal) const {
    return normal.substr(normal.find_last_of(Separator()) + 1);
}

// "/", "C:", "\\server" or "\\server\share".
bool PathRules::IsRoot(const String& normal) const {
    if (!m_windows) return normal == u"/";
    if (IsNetworkPath(normal)) return std::count(normal.begin(), normal.end(), u'\\') <= 3;
    return HasDrive(normal) && normal.size() == 2;
}

bool PathRules::IsBelow(StringView path, StringView folder) const {
    if (folder == u"/") return path.size() > 1;
    return path.size() > folder.size() && Same(path.substr(0, folder.size()), folder) &&
           path[folder.size()] == Separator();
}

bool PathRules::IsName(StringView name) const {
    if (!m_windows) return true;
    const bool forbidden = std::any_of(name.begin(), name.end(), [](char16_t unit) {
        return unit < 32 || StringView(u"<>:\"|?*").find(unit) != StringView::npos;
    });
    return !name.empty() && !forbidden && name.back() != u'.' && name.back() != u' ';
}

}  // namespace kestrum::sim
