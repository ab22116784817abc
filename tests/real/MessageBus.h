// A message bus of a test's own, which starts no program of the system.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "real/ChildProcess.h"

namespace kestrum::real {

class MessageBus {
  public:
    MessageBus() : m_address("unix:path=" + (m_folder / "bus")) {
        const std::string file = m_folder / "bus.conf";
        WriteText(file, "<busconfig><type>session</type><listen>" + m_address +
                            "</listen><policy context=\"default\"><allow send_destination=\"*\"/><allow "
                            "receive_sender=\"*\"/><allow own=\"*\"/>"
                            "</policy></busconfig>");
        ChildProcess::Options options;
        options.quiet = true;
        m_daemon = ChildProcess({"dbus-daemon", "--config-file=" + file, "--nofork", "--nopidfile"}, options);
        if (!WaitFor([this] { return std::filesystem::exists(m_folder / "bus"); })) {
            throw std::runtime_error("dbus-daemon did not start");
        }
    }
    const std::string& Address() const { return m_address; }
    /// Makes it the session's bus of the test program, until the end of the scope.
    [[nodiscard]] ScopedEnv Use() const { return ScopedEnv("DBUS_SESSION_BUS_ADDRESS", m_address); }

  private:
    TempFolder m_folder;
    std::string m_address;
    ChildProcess m_daemon;
};

}  // namespace kestrum::real
