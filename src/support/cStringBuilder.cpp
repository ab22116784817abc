#include "support/cStringBuilder.h"

#include <algorithm>

namespace kestrum {

void cStringBuilder::SetChunkSize(std::int32_t characters) {
    m_chunkBytes = std::max(characters, 1) * 2;
}

void cStringBuilder::SetTheString(StringView text) {
    m_text = text;
    Reserve();
}

void cStringBuilder::Clear() {
    String().swap(m_text);
    m_capacity = 0;
}

void cStringBuilder::AppendNL(StringView text) {
    Append(text);
    Append(u"\r\n");
}

void cStringBuilder::Append(StringView text) {
    m_text += text;
    Reserve();
}

void cStringBuilder::Insert(std::int32_t index, StringView text) {
    if (index < 0 || index > Length()) return;
    m_text.insert(static_cast<std::size_t>(index), text);
    Reserve();
}

void cStringBuilder::Remove(std::int32_t index, std::int32_t length) {
    if (index < 0 || index >= Length() || length <= 0) return;
    m_text.erase(static_cast<std::size_t>(index), static_cast<std::size_t>(length));
}

std::int32_t cStringBuilder::Find(StringView text, std::int32_t start) const {
    const std::size_t found = m_text.find(text, static_cast<std::size_t>(std::max(start, 0)));
    return found == String::npos ? -1 : static_cast<std::int32_t>(found);
}

void cStringBuilder::HeapMinimize() {
    m_text.shrink_to_fit();
    m_capacity = Length();
}

void cStringBuilder::Reserve() {
    const std::int32_t missing = Length() - m_capacity;
    if (missing <= 0) return;
    const std::int32_t chunks = (missing + ChunkSize() - 1) / ChunkSize();
    m_capacity += chunks * ChunkSize();
    m_text.reserve(static_cast<std::size_t>(m_capacity));
}

}  // namespace kestrum
