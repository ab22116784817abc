// A private PipeWire for one test: it hands pictures from one program to another and knows no device. Nobody links
// anything here but who asks for it.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "real/ChildProcess.h"

namespace kestrum::real {

class PipeWireServer {
  public:
    PipeWireServer() {
        const std::string file = m_folder / "pipewire.conf";
        WriteText(file, kConfiguration);
        ChildProcess::Options options;
        options.quiet = true;
        options.env = {{"XDG_RUNTIME_DIR", m_folder.Path().string()}, {"HOME", m_folder.Path().string()}};
        m_process = ChildProcess({"pipewire", "-c", file}, options);
        if (!WaitFor([this] { return Answers(); })) throw std::runtime_error("pipewire did not start");
    }

    /// A connection, the caller's; -1 if the server does not take it.
    int Connect() const {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, (m_folder / "pipewire-0").c_str(), sizeof address.sun_path - 1);
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
        close(fd);
        return -1;
    }
    /// Ends the server, as its crash does.
    void Kill() {
        m_process.Signal(SIGKILL);
        m_process.WaitForEnd();
    }

  private:
    static constexpr const char* kConfiguration =
        "context.properties = { core.daemon = true core.name = pipewire-0 }\n"
        "context.spa-libs = { support.* = support/libspa-support }\n"
        "context.modules = [\n"
        "  { name = libpipewire-module-protocol-native }\n"
        "  { name = libpipewire-module-access }\n"
        "  { name = libpipewire-module-client-node }\n"
        "  { name = libpipewire-module-link-factory }\n"
        "]\n";

    bool Answers() const {
        const int fd = Connect();
        if (fd >= 0) close(fd);
        return fd >= 0;
    }

    TempFolder m_folder;
    ChildProcess m_process;
};

}  // namespace kestrum::real
