// The system's own sound as a recording source.
#pragma once

#include <cstdint>

namespace kestrum::host {

class IRecSystemAudio {
  public:
    virtual ~IRecSystemAudio() = default;
    /// Above 0 if the system's sound can be captured.
    virtual std::int32_t CanRecordSystemAudio() = 0;
};

}  // namespace kestrum::host
