// Keys in the numbers that the core knows them by.
#pragma once

#include <cstdint>

namespace kestrum::platform {

/// The virtual-key code of an X key symbol; 0 for a key without one.
std::int32_t VirtualKey(std::uint32_t keySymbol);

}  // namespace kestrum::platform
