// Plain values as bytes: little endian integers, text with its length in front, lists with their count. A struct names
// its fields once (`Fields`), for both directions. A reader that meets the end early throws WireError: the other side
// is another version, or a byte went wrong.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kestrum::media::protocol {

class WireError : public std::runtime_error {
  public:
    WireError() : std::runtime_error("A message of the media worker cannot be read.") {}
};

class WireWriter {
  public:
    template <typename T>
    void operator()(const T& value) {
        if constexpr (std::is_enum_v<T>) {
            (*this)(static_cast<std::underlying_type_t<T>>(value));
        } else if constexpr (std::is_integral_v<T>) {
            for (std::size_t i = 0; i < sizeof(T); ++i) {
                m_bytes += static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * i));
            }
        } else {
            // Fields serves both directions and is therefore not const.
            const_cast<T&>(value).Fields(*this);
        }
    }
    void operator()(const std::string& text) {
        (*this)(static_cast<std::uint32_t>(text.size()));
        m_bytes += text;
    }
    template <typename T>
    void operator()(const std::vector<T>& list) {
        (*this)(static_cast<std::uint32_t>(list.size()));
        for (const auto& item : list) (*this)(item);
    }

    std::string Take() { return std::move(m_bytes); }

  private:
    std::string m_bytes;
};

class WireReader {
  public:
    explicit WireReader(std::string_view bytes) : m_rest(bytes) {}

    template <typename T>
    void operator()(T& value) {
        if constexpr (std::is_enum_v<T>) {
            std::underlying_type_t<T> number{};
            (*this)(number);
            value = static_cast<T>(number);
        } else if constexpr (std::is_integral_v<T>) {
            const auto bytes = Take(sizeof(T));
            std::uint64_t number = 0;
            for (std::size_t i = 0; i < sizeof(T); ++i) {
                number |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
            }
            value = static_cast<T>(number);
        } else {
            value.Fields(*this);
        }
    }
    void operator()(std::string& text) {
        std::uint32_t size = 0;
        (*this)(size);
        text = Take(size);
    }
    template <typename T>
    void operator()(std::vector<T>& list) {
        std::uint32_t count = 0;
        (*this)(count);
        // Each item takes a byte at least: a count beyond that is no count, and must not reserve memory.
        if (count > m_rest.size()) throw WireError();
        list.assign(count, T{});
        for (auto& item : list) (*this)(item);
    }

  private:
    std::string_view Take(std::size_t size) {
        if (size > m_rest.size()) throw WireError();
        const auto taken = m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        return taken;
    }

    std::string_view m_rest;
};

template <typename T>
std::string Pack(const T& value) {
    WireWriter writer;
    writer(value);
    return writer.Take();
}

/// Throws WireError.
template <typename T>
T Unpack(std::string_view bytes) {
    WireReader reader(bytes);
    T value{};
    reader(value);
    return value;
}

}  // namespace kestrum::media::protocol
