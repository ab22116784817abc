// A virtual display for one test. The server picks a free number itself and tells it, so that tests run side by side.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "real/ChildProcess.h"

namespace kestrum::real {

class XvfbServer {
  public:
    /// Starts a display of one screen and waits until it answers. Throws if it does not. `more` are further words of
    /// the server's command line.
    explicit XvfbServer(int width = 640, int height = 480, int depth = 24, const std::vector<std::string>& more = {}) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
        ChildProcess::Options options;
        options.quiet = true;
        options.inheritedFd = ends[1];
        const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
        std::vector<std::string> command = {
            "Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", screen, "-nolisten", "tcp", "-noreset",
            "-dpi", "96"};
        command.insert(command.end(), more.begin(), more.end());
        m_process = ChildProcess(command, options);
        close(ends[1]);
        m_name = ":" + ReadNumber(ends[0]);
        close(ends[0]);
        if (m_name == ":") throw std::runtime_error("Xvfb did not start");
    }

    /// Value for DISPLAY, such as ":3".
    const std::string& Name() const { return m_name; }
    /// Ends the display, as a crash of the X server does.
    void Kill() {
        m_process.Signal(SIGKILL);
        m_process.WaitForEnd();
    }
    /// Points DISPLAY of the test program at this server, until the end of the scope.
    [[nodiscard]] ScopedEnv Use() const { return ScopedEnv("DISPLAY", m_name); }

  private:
    static std::string ReadNumber(int fd) {
        std::string digits;
        for (char c; read(fd, &c, 1) == 1 && c != '\n';) digits += c;
        return digits;
    }

    ChildProcess m_process;
    std::string m_name;
};

}  // namespace kestrum::real
