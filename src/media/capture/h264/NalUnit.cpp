#include "media/capture/h264/NalUnit.h"

namespace kestrum::media::h264 {
namespace {

constexpr std::size_t kLengthBytes = 4;
constexpr std::uint8_t kEmulationPrevention = 3;

}  // namespace

void AppendUnit(std::vector<std::uint8_t>& out, std::uint8_t header, std::span<const std::uint8_t> payload) {
    const std::size_t start = out.size();
    out.resize(start + kLengthBytes);
    out.push_back(header);
    int zeros = 0;
    for (const std::uint8_t byte : payload) {
        if (zeros >= 2 && byte <= kEmulationPrevention) {
            out.push_back(kEmulationPrevention);
            zeros = 0;
        }
        out.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    const std::size_t length = out.size() - start - kLengthBytes;
    for (std::size_t i = 0; i < kLengthBytes; ++i) {
        out[start + i] = static_cast<std::uint8_t>(length >> (8 * (kLengthBytes - 1 - i)));
    }
}

std::vector<std::uint8_t> PayloadOf(std::span<const std::uint8_t> escaped) {
    std::vector<std::uint8_t> payload;
    int zeros = 0;
    for (const std::uint8_t byte : escaped) {
        if (zeros >= 2 && byte == kEmulationPrevention) {
            zeros = 0;
            continue;
        }
        payload.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    return payload;
}

}  // namespace kestrum::media::h264
