// The short form in which the package target takes a file: a package reserves two megabytes of zeros, which no seed
// should carry. A zero byte stands for a run of zeros whose length follows in three bytes, low byte first.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace kestrum::fuzz {

/// Files end here, however many runs an input names.
constexpr std::size_t kMostBytes = 4 << 20;

/// Into `file`, which is worth keeping: making megabytes anew for each input takes longer than reading them.
inline void Expand(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& file) {
    file.clear();
    for (std::size_t i = 0; i < input.size() && file.size() < kMostBytes; ++i) {
        if (input[i] != 0 || input.size() - i < 4) {
            file.push_back(input[i]);
            continue;
        }
        const std::size_t run =
            std::size_t{input[i + 1]} | std::size_t{input[i + 2]} << 8 | std::size_t{input[i + 3]} << 16;
        file.resize(std::min(file.size() + run, kMostBytes));
        i += 3;
    }
}

inline std::vector<std::uint8_t> Shorten(std::span<const std::uint8_t> file) {
    std::vector<std::uint8_t> input;
    for (std::size_t i = 0; i < file.size();) {
        if (file[i] != 0) {
            input.push_back(file[i++]);
            continue;
        }
        std::size_t run = 0;
        while (i < file.size() && file[i] == 0) ++i, ++run;
        const auto byte = [run](int shift) { return static_cast<std::uint8_t>(run >> shift & 0xFF); };
        input.insert(input.end(), {0, byte(0), byte(8), byte(16)});
    }
    return input;
}

}  // namespace kestrum::fuzz
