// Special folders after the XDG base directories, and the user's language after the locale variables.
#pragma once

#include <string>

#include "host/IShellFolders.h"

namespace kestrum::platform {

class LinuxShellFolders : public host::IShellFolders {
  public:
    /// "temp": TMPDIR or /tmp. "appdata": the configuration folder. Others: the variable itself.
    String Environment(const String& name) override;
    String SpecialFolder(std::int32_t number) override;
    /// Always the newest code, 63.
    std::int32_t OsVersionCode() override { return 63; }
    std::int32_t PrimaryLanguage() override;
};

/// The user's configuration folder: XDG_CONFIG_HOME if it is an absolute path, else ~/.config.
std::string ConfigFolder();

/// Folder of sockets and locks of this user that ends with the login: XDG_RUNTIME_DIR, else one below the temp folder
/// that only the user may enter (made if missing). Empty if that name belongs to somebody else.
std::string RuntimeFolder();

}  // namespace kestrum::platform
