#include "adapters/linux/SystemChecks.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/X11Connection.h"

namespace kestrum::platform::SystemChecks {
namespace {

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

Session SessionType() {
    const std::string type = Variable("XDG_SESSION_TYPE");
    if (type == "x11") return Session::X11;
    if (type == "wayland") return Session::Wayland;
    return Variable("WAYLAND_DISPLAY").empty() ? Session::None : Session::Wayland;
}

bool CanOpenDisplay() {
    return X11Connection().IsOpen();
}

bool IsFolderWritable(const String& folder) {
    std::string pattern = host::ToUtf8(folder) + "/.kestrum-XXXXXX";
    const Descriptor file(mkostemp(pattern.data(), O_CLOEXEC));
    if (!file) return false;
    unlink(pattern.c_str());
    return true;
}

std::int64_t FreeBytes(const String& path) {
    return LinuxFileSystem().FreeBytes(path);
}

}  // namespace kestrum::platform::SystemChecks
