// A display of several monitors for one test: the X server with virtual outputs, each with just the modes that the test
// names. Unlike XvfbServer its outputs can be switched, moved and turned off, as on a desk with a projector.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "Places.h"
#include "real/ChildProcess.h"

namespace kestrum::real {

class XorgServer {
  public:
    /// Starts a display with these monitors, from left to right; the first is the primary one. A monitor is its modes
    /// apart by commas, the first of them in force, such as "1920x1080,1280x720,1280x720@25" (50 Hz if nothing is
    /// said). The outputs are called DUMMY0, DUMMY1 ... Throws if it does not come up.
    explicit XorgServer(const std::vector<std::string>& monitors) {
        std::vector<std::string> tool{std::string(places::kSource) + "/tools/xorg-monitors"};
        tool.insert(tool.end(), monitors.begin(), monitors.end());
        WriteText(m_folder / "xorg.conf", Run(tool).output);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
        ChildProcess::Options options;
        options.quiet = true;
        options.inheritedFd = ends[1];
        m_process = ChildProcess(
            {"Xorg", "-displayfd", std::to_string(ends[1]), "-config", m_folder / "xorg.conf", "-logfile",
             m_folder / "xorg.log", "-novtswitch", "-sharevts", "-nolisten", "tcp", "-noreset", "-dpi", "96"},
            options);
        close(ends[1]);
        for (char c; read(ends[0], &c, 1) == 1 && c != '\n';) m_number += c;
        close(ends[0]);
        if (m_number.empty()) throw std::runtime_error("Xorg did not start: " + ReadText(m_folder / "xorg.log"));
    }

    /// Value for DISPLAY, such as ":3".
    std::string Name() const { return ":" + m_number; }
    /// Points DISPLAY of the test program at this server, until the end of the scope.
    [[nodiscard]] ScopedEnv Use() const { return ScopedEnv("DISPLAY", Name()); }
    /// Runs xrandr with these arguments; false if it failed.
    bool Xrandr(const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{"xrandr", "-d", Name()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return Run(command).code == 0;
    }

  private:
    TempFolder m_folder;
    ChildProcess m_process;
    std::string m_number;
};

}  // namespace kestrum::real
