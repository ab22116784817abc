// Where statements that were skipped and events of interest are noted. Never shown to the user.
#pragma once

#include "host/Error.h"

namespace kestrum::host {

class ITrace {
  public:
    virtual ~ITrace() = default;
    /// A statement was skipped because of `error`.
    virtual void Skipped(const Error& error) = 0;
    /// A line for the developer's trace.
    virtual void Note(const String& line) = 0;
};

}  // namespace kestrum::host
