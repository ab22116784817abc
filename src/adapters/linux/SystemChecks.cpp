#include "adapters/linux/SystemChecks.h"

#include <fcntl.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/X11Connection.h"

namespace kestrum::platform::SystemChecks {
namespace {

constexpr std::uint64_t kPortalTimeoutUs = 10'000'000;

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

bool HasScreenCast() {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) return false;
    sd_bus_set_method_call_timeout(bus, kPortalTimeoutUs);
    std::uint32_t version = 0;
    const int result =
        sd_bus_get_property_trivial(bus, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                    "org.freedesktop.portal.ScreenCast", "version", nullptr, 'u', &version);
    sd_bus_flush_close_unref(bus);
    return result >= 0 && version > 0;
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
