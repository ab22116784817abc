// Where an encoded movie must have key frames although no picture of the recording need begin there: at every index
// entry, so that a click in the player lands on exactly that slide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "media/convert/ConvertRequest.h"

namespace kestrum::media {

class KeyFramePlan {
  public:
    /// Entries at or past `lengthMs` are left out: there is no picture to show.
    KeyFramePlan(const std::vector<ConvertEntry>& entries, std::int64_t lengthMs);

    /// The positions before `pos` that were not taken yet, ascending; they are taken now. A still picture must be
    /// repeated there.
    std::vector<std::int64_t> TakeBefore(std::int64_t pos);
    /// True if an entry lies at exactly `pos`; it is taken now.
    bool TakeAt(std::int64_t pos);

  private:
    std::vector<std::int64_t> m_positions;
    std::size_t m_next = 0;
};

}  // namespace kestrum::media
