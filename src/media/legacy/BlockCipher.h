// How the blocks of an encrypted package are written: the sample of each one is XORed with a key stream of AES-128 in
// counter mode. The counter starts at a number that no other block of the package has, made of its position and track,
// so blocks can be read in any order and keep their size.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "media/package/PackageTypes.h"

struct AVAESCTR;

namespace kestrum::media {

class BlockCipher {
  public:
    /// Throws kDamaged if `key` has not 16 bytes.
    explicit BlockCipher(const Bytes& key);

    /// Encrypts a plain sample, decrypts an encrypted one.
    void Apply(std::uint64_t track, std::int64_t positionMs, std::span<std::uint8_t> sample);

  private:
    struct Free {
        void operator()(AVAESCTR* stream) const;
    };
    std::unique_ptr<AVAESCTR, Free> m_stream;
};

}  // namespace kestrum::media
