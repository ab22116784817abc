// Environment and special folders from maps that a test may change.
#pragma once

#include <map>

#include "host/IShellFolders.h"

namespace kestrum::sim {

class ShellFolders : public host::IShellFolders {
  public:
    String Environment(const String& name) override {
        auto found = environment.find(name);
        return found == environment.end() ? String() : found->second;
    }
    String SpecialFolder(std::int32_t number) override {
        auto found = special.find(number);
        return found == special.end() ? String() : found->second;
    }
    std::int32_t OsVersionCode() override { return osVersionCode; }
    std::int32_t PrimaryLanguage() override { return primaryLanguage; }

    std::map<String, String> environment{{u"temp", u"/tmp/user"}, {u"appdata", u"/home/anna/.local/share"}};
    std::map<std::int32_t, String> special{{28, u"/home/anna/.local/share"}};
    std::int32_t osVersionCode = 63;
    std::int32_t primaryLanguage = 9;
};

}  // namespace kestrum::sim
