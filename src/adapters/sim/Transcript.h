// What happened, in order, in one list over all ports, so that a test can state an order of calls across them.
#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

#include "host/String.h"

namespace kestrum::sim {

class Transcript {
  public:
    void Add(const String& line) { m_lines.push_back(line); }
    void Clear() { m_lines.clear(); }
    const std::vector<String>& Lines() const { return m_lines; }

    /// Number of lines that begin with `start`.
    int Count(const String& start) const {
        return static_cast<int>(
            std::count_if(m_lines.begin(), m_lines.end(), [&](const String& l) { return l.rfind(start, 0) == 0; }));
    }
    bool Has(const String& start) const { return Count(start) > 0; }

    /// Index of the first line that begins with `start`, -1 if there is none.
    int IndexOf(const String& start) const {
        for (std::size_t i = 0; i < m_lines.size(); ++i) {
            if (m_lines[i].rfind(start, 0) == 0) return static_cast<int>(i);
        }
        return -1;
    }

    /// The lines that begin with `start`, in order.
    std::vector<String> Only(const String& start) const {
        std::vector<String> found;
        std::copy_if(m_lines.begin(), m_lines.end(), std::back_inserter(found),
                     [&](const String& l) { return l.rfind(start, 0) == 0; });
        return found;
    }

  private:
    std::vector<String> m_lines;
};

}  // namespace kestrum::sim
