// What is agreed on with PipeWire: pixels of 32 bits in memory of the system, told where they changed.
#pragma once

#include <cstdint>
#include <vector>

struct spa_pod;

namespace kestrum::media {

/// Descriptions for PipeWire, with the memory they lie in.
class StreamParams {
  public:
    StreamParams() : m_memory(kBytes) {}
    StreamParams(const StreamParams&) = delete;
    StreamParams& operator=(const StreamParams&) = delete;

    /// Pictures of any size in our formats, at most as many a second as the finest recording takes; where the other
    /// side cannot be slowed down, as many as it has.
    void OfferFormats();
    /// How pictures are handed over, and what is told with each.
    void OfferBuffers();
    std::vector<const spa_pod*>& List() { return m_list; }

  private:
    static constexpr std::size_t kBytes = 4096;

    template <typename Build>
    void Add(Build build);

    std::vector<std::uint8_t> m_memory;
    std::size_t m_used = 0;
    std::vector<const spa_pod*> m_list;
};

}  // namespace kestrum::media
