// Keeping system and display awake.
#pragma once

#include <cstdint>

namespace kestrum::host {

/// Bits of the thread execution state.
enum ExecutionState : std::uint32_t {
    kExecutionSystemRequired = 0x1,
    kExecutionDisplayRequired = 0x2,
    kExecutionContinuous = 0x80000000,
};

class IPower {
  public:
    virtual ~IPower() = default;
    /// Sets the execution state: 0x80000003 keeps system and display awake until 0x80000000 withdraws it.
    virtual void SetExecutionState(std::uint32_t state) = 0;
    /// False if that was wanted, and nothing on this system took the wish for the display.
    virtual bool KeepsDisplayAwake() = 0;
};

}  // namespace kestrum::host
