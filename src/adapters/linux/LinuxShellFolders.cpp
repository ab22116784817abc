#include "adapters/linux/LinuxShellFolders.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace kestrum::platform {
namespace {

constexpr std::int32_t kEnglish = 9;

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string Home() {
    const std::string home = Variable("HOME");
    if (!home.empty()) return home;
    const passwd* user = getpwuid(getuid());
    return user ? user->pw_dir : "/";
}

/// The base directories must be absolute; a relative value counts as unset.
std::string BaseFolder(const char* variable, const char* underHome) {
    const std::string value = Variable(variable);
    return value.starts_with('/') ? value : Home() + underHome;
}

std::string TempFolder() {
    const std::string value = Variable("TMPDIR");
    return value.starts_with('/') ? value : "/tmp";
}

/// A folder of the user's own choice from user-dirs.dirs, such as XDG_DOCUMENTS_DIR="$HOME/Documents".
std::string UserFolder(const std::string& key, const char* underHome) {
    std::ifstream file(ConfigFolder() + "/user-dirs.dirs");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(key + "=\"") || !line.ends_with('"')) continue;
        const std::string value = line.substr(key.size() + 2, line.size() - key.size() - 3);
        if (value.starts_with("$HOME/")) return Home() + value.substr(5);
        if (value.starts_with('/')) return value;
    }
    return Home() + underHome;
}

}  // namespace

std::string ConfigFolder() {
    return BaseFolder("XDG_CONFIG_HOME", "/.config");
}

std::string RuntimeFolder() {
    const std::string given = Variable("XDG_RUNTIME_DIR");
    if (given.starts_with('/') && std::filesystem::is_directory(given)) return given;
    const std::string own = TempFolder() + "/kestrum-" + std::to_string(getuid());
    mkdir(own.c_str(), 0700);
    struct stat info {};
    const bool isOurs = lstat(own.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == getuid();
    return isOurs ? own : "";
}

String LinuxShellFolders::Environment(const String& name) {
    if (name == u"temp") return host::FromUtf8(TempFolder());
    if (name == u"appdata") return host::FromUtf8(ConfigFolder());
    return host::FromUtf8(Variable(host::ToUtf8(name).c_str()));
}

String LinuxShellFolders::SpecialFolder(std::int32_t number) {
    switch (number) {
        case 0:
            return host::FromUtf8(UserFolder("XDG_DESKTOP_DIR", "/Desktop"));
        case 5:
            return host::FromUtf8(UserFolder("XDG_DOCUMENTS_DIR", "/Documents"));
        case 13:
            return host::FromUtf8(UserFolder("XDG_MUSIC_DIR", "/Music"));
        case 14:
            return host::FromUtf8(UserFolder("XDG_VIDEOS_DIR", "/Videos"));
        case 26:
            return host::FromUtf8(ConfigFolder());
        case 28:
            return host::FromUtf8(BaseFolder("XDG_DATA_HOME", "/.local/share"));
        case 39:
            return host::FromUtf8(UserFolder("XDG_PICTURES_DIR", "/Pictures"));
        case 40:
            return host::FromUtf8(Home());
        default:
            return {};
    }
}

std::int32_t LinuxShellFolders::PrimaryLanguage() {
    static constexpr std::array<std::pair<const char*, std::int32_t>, 14> kLanguages = {{{"zh", 4},
                                                                                         {"de", 7},
                                                                                         {"el", 8},
                                                                                         {"en", 9},
                                                                                         {"es", 10},
                                                                                         {"fi", 11},
                                                                                         {"fr", 12},
                                                                                         {"it", 16},
                                                                                         {"ja", 17},
                                                                                         {"ko", 18},
                                                                                         {"nl", 19},
                                                                                         {"pl", 21},
                                                                                         {"pt", 22},
                                                                                         {"ru", 25}}};
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string locale = Variable(variable);
        if (locale.empty()) continue;
        const std::string language = locale.substr(0, locale.find_first_of("_.@"));
        for (const auto& [name, id] : kLanguages) {
            if (language == name) return id;
        }
        return kEnglish;
    }
    return kEnglish;
}

}  // namespace kestrum::platform
