// Bits in the order of the standard, with its variable-length numbers.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kestrum::media::h264 {

class BitWriter {
  public:
    /// The lowest `count` bits of `value`, highest first; 0 to 32 of them.
    void Bits(std::uint32_t value, int count) {
        m_waiting = (m_waiting << count) | (value & ((std::uint64_t{1} << count) - 1));
        m_count += count;
        while (m_count >= 8) {
            m_count -= 8;
            m_bytes.push_back(static_cast<std::uint8_t>(m_waiting >> m_count));
        }
    }
    void Flag(bool value) { Bits(value ? 1 : 0, 1); }
    /// Exp-Golomb code of a number below 2^31.
    void Unsigned(std::uint32_t value) {
        int length = 0;
        for (std::uint32_t rest = value + 1; rest > 1; rest >>= 1) ++length;
        Bits(0, length);
        Bits(value + 1, length + 1);
    }
    /// Exp-Golomb code of a signed number: 1, -1, 2, -2 become 1, 2, 3, 4.
    void Signed(std::int32_t value) {
        Unsigned(value > 0 ? 2 * static_cast<std::uint32_t>(value) - 1 : 2 * static_cast<std::uint32_t>(-value));
    }
    /// The stop bit, and zeros up to the end of the byte.
    void Finish() {
        Bits(1, 1);
        if (m_count > 0) Bits(0, 8 - m_count);
    }
    void Clear() {
        m_bytes.clear();
        m_waiting = 0;
        m_count = 0;
    }
    /// Whole bytes so far.
    std::span<const std::uint8_t> Bytes() const { return m_bytes; }

  private:
    std::vector<std::uint8_t> m_bytes;
    std::uint64_t m_waiting = 0;
    int m_count = 0;
};

}  // namespace kestrum::media::h264
