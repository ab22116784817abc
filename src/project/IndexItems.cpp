#include "project/IndexItems.h"

#include <utility>

#include "host/Error.h"

namespace kestrum {

std::size_t IndexItems::Offset(std::int32_t number) const {
    if (number < 1 || number > Count())
        throw host::Error(host::ErrorNumber::OutOfRange, u"IndexItems", u"Subscript out of range");
    return static_cast<std::size_t>(number) - 1;
}

CIndexItem& IndexItems::Item(std::int32_t number) {
    return m_items[Offset(number)];
}

const CIndexItem& IndexItems::Item(std::int32_t number) const {
    return m_items[Offset(number)];
}

void IndexItems::Add(CIndexItem item) {
    m_items.push_back(std::move(item));
}

void IndexItems::Insert(CIndexItem item, std::int32_t before) {
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(Offset(before)), std::move(item));
}

void IndexItems::Remove(std::int32_t number) {
    m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(Offset(number)));
}

}  // namespace kestrum
