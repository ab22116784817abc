// Environment and special folders from maps that a test may change.
#pragma once

#include <map>

#include "host/IShellFolders.h"

namespace kestrum::sim {

class ShellFolders : public host::IShellFolders {
  public:
    ShellFolders(const String& temp, const String& appData, const String& localData)
        : environment{{u"temp", temp}, {u"appdata", appData}}, special{{28, localData}} {}

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

    std::map<String, String> environment;
    std::map<std::int32_t, String> special;
    std::int32_t osVersionCode = 63;
    std::int32_t primaryLanguage = 9;
};

}  // namespace kestrum::sim
