// The list of packages last worked on, at most six, kept in the settings for the sibling program's benefit.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "host/String.h"
#include "support/Context.h"

namespace kestrum {

/// A package and when it was last worked on.
struct RecentEntry {
    String path;
    String date;
};

/// What the settings of one slot say: nothing for an empty slot, a path that is none (it holds a NUL) or one that does
/// not end in ".ktr". Whether the package exists is another question.
std::optional<RecentEntry> DecodeRecentEntry(StringView path, StringView date);

/// The entries of a whole list as it lies in the settings: path and date of slot 1, of slot 2 …, one a line. Of any
/// bytes; never throws, and gives six entries at most.
std::vector<RecentEntry> DecodeRecentList(std::string_view lines);

class RecentProjects {
  public:
    explicit RecentProjects(const support::Context& c) : m_c(c) {}

    using Entry = RecentEntry;

    /// Reads the list; an entry counts if its path exists as a file and ends in ".ktr".
    void LoadRecent();
    /// Puts `path` on top with the date of now and writes the list.
    void AddRecent(const String& path);

    const std::vector<Entry>& entries() const { return m_entries; }

  private:
    void Write() const;

    support::Context m_c;
    std::vector<Entry> m_entries;
};

}  // namespace kestrum
