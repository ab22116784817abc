// What a slice header needs to know of the sequence parameter set that another encoder wrote.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace kestrum::media::h264 {

struct SequenceSet {
    std::uint32_t id = 0;
    int frameNumberBits = 0;  ///< of frame_num in a slice header
};

/// Reads a unit (header byte first, without its length). Nothing if it is no whole sequence parameter set, or one of
/// another kind than the small pictures have: frames of 4:2:0 with 8 bits, without scaling lists, shown in the order in
/// which they come.
std::optional<SequenceSet> ReadSequenceSet(std::span<const std::uint8_t> unit);

}  // namespace kestrum::media::h264
