#include "project/RecentProjects.h"

#include <algorithm>

#include "support/modConfig.h"
#include "support/modGlobal.h"

namespace kestrum {
namespace {

constexpr StringView kSection = u"lastOpenedProj";
constexpr StringView kPackageEnding = u".ktr";
constexpr std::size_t kMostEntries = 6;

String PathKey(std::size_t slot) {
    return ToText(static_cast<std::int64_t>(slot));
}
String DateKey(std::size_t slot) {
    return u"dt" + PathKey(slot);
}

}  // namespace

void RecentProjects::LoadRecent() {
    m_entries.clear();
    for (std::size_t slot = 1; slot <= kMostEntries; ++slot) {
        const String path = modConfig::GetHexSetting(m_c, kSection, PathKey(slot), u"");
        const bool isPackage = StringView(path).ends_with(kPackageEnding);
        if (isPackage && m_c.host.fs.FileExists(path))
            m_entries.push_back({path, modConfig::GetHexSetting(m_c, kSection, DateKey(slot), u"")});
    }
}

void RecentProjects::AddRecent(const String& path) {
    const auto present =
        std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) { return entry.path == path; });
    if (present != m_entries.end())
        m_entries.erase(present);
    else if (m_entries.size() == kMostEntries)
        m_entries.pop_back();
    m_entries.insert(m_entries.begin(), {path, DateTimeText(m_c.host.loop.Now())});
    Write();
}

void RecentProjects::Write() const {
    for (std::size_t slot = 1; slot <= kMostEntries; ++slot) {
        const Entry entry = slot <= m_entries.size() ? m_entries[slot - 1] : Entry{};
        modConfig::SaveHexSetting(m_c, kSection, PathKey(slot), entry.path);
        modConfig::SaveHexSetting(m_c, kSection, DateKey(slot), entry.date);
    }
}

}  // namespace kestrum
