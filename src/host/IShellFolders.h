// Special folders and environment values, in the names that the rules use.
#pragma once

#include <cstdint>

#include "host/String.h"

namespace kestrum::host {

class IShellFolders {
  public:
    virtual ~IShellFolders() = default;
    /// Value of "temp" or "appdata" (or another environment variable); empty if unset.
    virtual String Environment(const String& name) = 0;
    /// Special folder by its number in the platform's numbering (28: local application data); empty if unknown.
    virtual String SpecialFolder(std::int32_t number) = 0;
    /// Version of the system as major * 10 + minor, 63 for 6.3 and everything later.
    virtual std::int32_t OsVersionCode() = 0;
    /// Low 8 bits of the user's default language id: 4 is Chinese, 9 English.
    virtual std::int32_t PrimaryLanguage() = 0;
};

}  // namespace kestrum::host
