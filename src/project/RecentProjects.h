// The list of packages last worked on, at most six, kept in the settings for the sibling program's benefit.
#pragma once

#include <vector>

#include "host/String.h"
#include "support/Context.h"

namespace kestrum {

class RecentProjects {
  public:
    explicit RecentProjects(const support::Context& c) : m_c(c) {}

    struct Entry {
        String path;
        String date;
    };

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
