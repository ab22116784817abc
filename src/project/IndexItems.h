// The ordered, one-based list of index entries that a project file and a publishing list both keep. An access outside
// the list is the run-time failure "out of range" (host::Error 9), as everywhere in the rules.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "project/CIndexItem.h"

namespace kestrum {

class IndexItems {
  public:
    std::int32_t Count() const { return static_cast<std::int32_t>(m_items.size()); }

    /// Entry `number`, 1 to Count(); throws host::Error 9 outside.
    CIndexItem& Item(std::int32_t number);
    const CIndexItem& Item(std::int32_t number) const;

    void Add(CIndexItem item);
    /// Inserts in front of entry `before`; throws host::Error 9 outside 1 to Count().
    void Insert(CIndexItem item, std::int32_t before);
    /// Throws host::Error 9 outside 1 to Count().
    void Remove(std::int32_t number);
    void RemoveAll() { m_items.clear(); }
    /// Removes every entry that `condition` holds for, in one pass.
    template <class Condition>
    void RemoveIf(Condition&& condition) {
        std::erase_if(m_items, std::forward<Condition>(condition));
    }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

  private:
    std::size_t Offset(std::int32_t number) const;

    std::vector<CIndexItem> m_items;
};

}  // namespace kestrum
