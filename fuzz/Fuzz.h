// What the fuzz targets share: a claim that has to hold for every input, the input cut into parts, bytes as text.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "host/String.h"

namespace kestrum::fuzz {

/// Ends the run with a report, and the fuzzer keeps the input.
inline void Require(bool holds, const char* claim) {
    if (holds) return;
    std::fprintf(stderr, "fuzz: this does not hold: %s\n", claim);
    std::abort();
}

inline std::string_view Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// UTF-16 of an input: its first byte decides whether the rest is UTF-8 or code units as they are, so that unpaired
/// surrogates and NULs come in too.
inline String Text(std::string_view input) {
    if (input.empty()) return {};
    const std::string_view rest = input.substr(1);
    if (input.front() != '\1') return host::FromUtf8(rest);
    String text;
    for (std::size_t i = 0; i + 1 < rest.size(); i += 2) {
        const auto low = static_cast<unsigned char>(rest[i]);
        const auto high = static_cast<unsigned char>(rest[i + 1]);
        text += static_cast<char16_t>(low | high << 8);
    }
    return text;
}

/// The parts between the separators; one part for an empty input.
inline std::vector<std::string> Parts(std::string_view input, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = input.find(separator);
        parts.emplace_back(input.substr(0, end));
        if (end == std::string_view::npos) return parts;
        input.remove_prefix(end + 1);
    }
}

}  // namespace kestrum::fuzz
