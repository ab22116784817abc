#include "media/legacy/BlockCipher.h"

extern "C" {
#include <libavutil/aes_ctr.h>
}

#include <array>
#include <new>

#include "media/package/Error.h"

namespace kestrum::media {

namespace {

constexpr std::size_t kBlockSize = 16;

/// Eight bytes that no other block has, highest first, and eight that count from zero.
std::array<std::uint8_t, kBlockSize> FirstCounter(std::uint64_t track, std::int64_t positionMs) {
    const std::uint64_t number = (static_cast<std::uint64_t>(positionMs) << 8) | (track & 0xFF);
    std::array<std::uint8_t, kBlockSize> counter{};
    for (std::size_t i = 0; i < 8; ++i) counter[i] = static_cast<std::uint8_t>(number >> (56 - 8 * i));
    return counter;
}

}  // namespace

BlockCipher::BlockCipher(const Bytes& key) : m_stream(av_aes_ctr_alloc()) {
    if (key.size() != AES_CTR_KEY_SIZE)
        throw Error(ErrorKind::kDamaged, "The package does not hold the key of its encrypted media.", 0);
    if (!m_stream || av_aes_ctr_init(m_stream.get(), key.data()) != 0) throw std::bad_alloc();
}

void BlockCipher::Apply(std::uint64_t track, std::int64_t positionMs, std::span<std::uint8_t> sample) {
    av_aes_ctr_set_full_iv(m_stream.get(), FirstCounter(track, positionMs).data());
    av_aes_ctr_crypt(m_stream.get(), sample.data(), sample.data(), static_cast<int>(sample.size()));
}

void BlockCipher::Free::operator()(AVAESCTR* stream) const {
    av_aes_ctr_free(stream);
}

}  // namespace kestrum::media
