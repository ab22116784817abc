// A map from text to value that keeps the order of insertion. Keys compare exactly.
#pragma once

#include <map>
#include <vector>

#include "support/Value.h"

namespace kestrum {

class Dictionary {
  public:
    /// Adds an entry at the end. Error 457 if the key is present.
    void Add(String key, Value value);
    bool exists(StringView key) const;
    /// The value, which can be assigned. A key that is absent gets an Empty entry.
    Value& item(StringView key);
    /// The keys in order of insertion.
    const std::vector<String>& keys() const { return m_keys; }
    std::int32_t count() const { return static_cast<std::int32_t>(m_keys.size()); }

  private:
    std::vector<String> m_keys;
    std::map<String, Value, std::less<>> m_values;
};

}  // namespace kestrum
