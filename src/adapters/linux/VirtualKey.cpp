#include "adapters/linux/VirtualKey.h"

#include <array>
#include <utility>

namespace kestrum::platform {
namespace {

// Key symbols of the X protocol's appendix A ("KEYSYM Encoding").
constexpr std::uint32_t kF1 = 0xFFBE, kF24 = 0xFFD5;
constexpr std::int32_t kVirtualF1 = 112;

constexpr std::array<std::pair<std::uint32_t, std::int32_t>, 26> kOthers = {{
    {0x0020, 32},  // space
    {0xFF08, 8},   // BackSpace
    {0xFF09, 9},   // Tab
    {0xFF0D, 13},  // Return
    {0xFF8D, 13},  // KP_Enter
    {0xFF13, 19},  // Pause
    {0xFF1B, 27},  // Escape
    {0xFF50, 36},  // Home
    {0xFF51, 37},  // Left
    {0xFF52, 38},  // Up
    {0xFF53, 39},  // Right
    {0xFF54, 40},  // Down
    {0xFF55, 33},  // Page Up
    {0xFF56, 34},  // Page Down
    {0xFF57, 35},  // End
    {0xFF61, 44},  // Print
    {0xFF63, 45},  // Insert
    {0xFFFF, 46},  // Delete
    {0xFFE1, 16},  // Shift
    {0xFFE2, 16},  // Shift
    {0xFFE3, 17},  // Control
    {0xFFE4, 17},  // Control
    {0xFFE9, 18},  // Alt
    {0xFFEA, 18},  // Alt
    {0xFFEB, 91},  // Super
    {0xFFE5, 20},  // Caps Lock
}};

}  // namespace

std::int32_t VirtualKey(std::uint32_t keySymbol) {
    if (keySymbol >= 'a' && keySymbol <= 'z') return static_cast<std::int32_t>(keySymbol - 'a' + 'A');
    if ((keySymbol >= 'A' && keySymbol <= 'Z') || (keySymbol >= '0' && keySymbol <= '9')) {
        return static_cast<std::int32_t>(keySymbol);
    }
    if (keySymbol >= kF1 && keySymbol <= kF24) return kVirtualF1 + static_cast<std::int32_t>(keySymbol - kF1);
    for (const auto& [symbol, key] : kOthers) {
        if (symbol == keySymbol) return key;
    }
    return 0;
}

}  // namespace kestrum::platform
