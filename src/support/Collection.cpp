#include "support/Collection.h"

#include "support/Numbers.h"

namespace kestrum {

Value& Collection::Item(std::int32_t number) {
    return ItemAt(m_values, number);
}

void Collection::Remove(std::int32_t number) {
    ItemAt(m_values, number);
    m_values.erase(m_values.begin() + (number - 1));
}

}  // namespace kestrum
