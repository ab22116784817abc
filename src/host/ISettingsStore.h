// The per-user store of settings: (application, section, key) to text. Shared by all processes of the user; each call
// is atomic by itself, the last writer wins.
#pragma once

#include <optional>

#include "host/String.h"

namespace kestrum::host {

class ISettingsStore {
  public:
    virtual ~ISettingsStore() = default;
    /// The stored text, none if the key was never set. Never fails: an unreadable store has no values.
    virtual std::optional<String> Read(const String& application, const String& section, const String& key) = 0;
    /// Stores a text, an empty one too. Fails if the store cannot be written.
    virtual void Write(const String& application, const String& section, const String& key, const String& value) = 0;
};

}  // namespace kestrum::host
