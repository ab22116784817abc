// Payloads in the envelope that the package carries: a length of four bytes, a header byte, and the payload with a byte
// 3 wherever it would look like a start code.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kestrum::media::h264 {

/// Appends a unit with this header byte (importance and type).
void AppendUnit(std::vector<std::uint8_t>& out, std::uint8_t header, std::span<const std::uint8_t> payload);

/// The payload of a unit (without length and header) as it was before the bytes 3 were put in.
std::vector<std::uint8_t> PayloadOf(std::span<const std::uint8_t> escaped);

}  // namespace kestrum::media::h264
