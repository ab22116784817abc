// A growing text buffer for building long texts. Positions count from 0.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum {

class cStringBuilder {
  public:
    /// Characters in use.
    std::int32_t Length() const { return static_cast<std::int32_t>(m_text.size()); }
    /// Characters allocated.
    std::int32_t Capacity() const { return m_capacity; }
    /// Characters by which the buffer grows; 8192 until set. Values below 1 count as 1.
    std::int32_t ChunkSize() const { return m_chunkBytes / 2; }
    void SetChunkSize(std::int32_t characters);

    const String& toString() const { return m_text; }
    const String& TheString() const { return m_text; }
    /// Replaces all.
    void SetTheString(StringView text);
    /// Empties the buffer and frees it.
    void Clear();
    /// The text and a line break (CR LF).
    void AppendNL(StringView text);
    void Append(StringView text);
    void AppendByVal(StringView text) { Append(text); }
    /// A position beyond the end does nothing.
    void Insert(std::int32_t index, StringView text);
    void InsertByVal(std::int32_t index, StringView text) { Insert(index, text); }
    /// Takes out what there is of `length` characters; a position beyond the end does nothing.
    void Remove(std::int32_t index, std::int32_t length);
    /// Position of `text` at or after `start`, -1 if it is not there.
    std::int32_t Find(StringView text, std::int32_t start = 0) const;
    /// Gives back unused space.
    void HeapMinimize();

  private:
    void Reserve();

    String m_text;
    std::int32_t m_capacity = 0;
    std::int32_t m_chunkBytes = 16384;
};

}  // namespace kestrum
