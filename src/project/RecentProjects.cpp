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

/// Takes the first line off `lines`.
String TakeLine(std::string_view& lines) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    const String line = host::FromUtf8(std::string(lines.substr(0, end)));
    lines.remove_prefix(std::min(end + 1, lines.size()));
    return line;
}

}  // namespace

std::optional<RecentEntry> DecodeRecentEntry(StringView path, StringView date) {
    RecentEntry entry{modConfig::DecodeHexSetting(path, u""), modConfig::DecodeHexSetting(date, u"")};
    const bool isPath = entry.path.find(u'\0') == String::npos;
    if (!isPath || !StringView(entry.path).ends_with(kPackageEnding)) return std::nullopt;
    return entry;
}

std::vector<RecentEntry> DecodeRecentList(std::string_view lines) {
    std::vector<RecentEntry> entries;
    for (std::size_t slot = 1; slot <= kMostEntries; ++slot) {
        const String path = TakeLine(lines);
        if (const auto entry = DecodeRecentEntry(path, TakeLine(lines))) entries.push_back(*entry);
    }
    return entries;
}

void RecentProjects::LoadRecent() {
    m_entries.clear();
    for (std::size_t slot = 1; slot <= kMostEntries; ++slot) {
        const String path = modConfig::GetSetting(m_c, kSection, PathKey(slot), u"");
        const auto entry = DecodeRecentEntry(path, modConfig::GetSetting(m_c, kSection, DateKey(slot), u""));
        if (entry && m_c.host.fs.FileExists(entry->path)) m_entries.push_back(*entry);
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
