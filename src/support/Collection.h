// A list of values, numbered from 1.
#pragma once

#include <vector>

#include "support/Value.h"

namespace kestrum {

class Collection {
  public:
    /// Adds at the end.
    void Add(Value value) { m_values.push_back(std::move(value)); }
    /// Error 9 for a number that the list does not have.
    Value& Item(std::int32_t number);
    /// Takes an item out; error 9 likewise.
    void Remove(std::int32_t number);
    std::int32_t Count() const { return static_cast<std::int32_t>(m_values.size()); }

  private:
    std::vector<Value> m_values;
};

}  // namespace kestrum
