#include "support/Dictionary.h"

#include "host/Error.h"

namespace kestrum {

void Dictionary::Add(String key, Value value) {
    if (!m_values.emplace(key, std::move(value)).second) {
        throw host::Error(host::ErrorNumber::DuplicateKey, u"Dictionary",
                          u"This key is already associated with an element of this collection");
    }
    m_keys.push_back(std::move(key));
}

bool Dictionary::exists(StringView key) const {
    return m_values.find(key) != m_values.end();
}

Value& Dictionary::item(StringView key) {
    const auto found = m_values.find(key);
    if (found != m_values.end()) return found->second;
    m_keys.emplace_back(key);
    return m_values[String(key)];
}

}  // namespace kestrum
