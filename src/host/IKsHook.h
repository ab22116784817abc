// The hook library: input for the recording itself, handed over as window messages 0x8001 to 0x800C.
#pragma once

#include <cstdint>

#include "host/IInputHooks.h"

namespace kestrum::host {

class IKsHook {
  public:
    virtual ~IKsHook() = default;
    /// Posts messages to `window` from now on; `hostKind` 0 is the presentation program. 0 is failure, for instance
    /// when another recorder of this user has the hook.
    virtual std::int32_t InstallMessageHook(WindowHandle window, std::int32_t hostKind) = 0;
    virtual void UnInstallMessageHook() = 0;
    /// Turns the hot keys F9 to F12 on (non-zero) or off.
    virtual void EnableHotKey(std::int32_t enable) = 0;
};

}  // namespace kestrum::host
