// A display of several monitors for one test: the X server with virtual outputs, each with just the modes that the test
// names. Unlike XvfbServer its outputs can be switched, moved and turned off, as on a desk with a projector.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "real/ChildProcess.h"

namespace kestrum::real {

class XorgServer {
  public:
    /// Pixels, and hertz: 50 or 25.
    struct Mode {
        int width = 0, height = 0, rate = 50;
    };
    /// One output: the first mode is in force at the start.
    using Output = std::vector<Mode>;

    /// Starts a display whose outputs, at most 16, are called DUMMY0, DUMMY1 ... and stand from left to right; the
    /// first is the primary one. Throws if it does not come up.
    explicit XorgServer(const std::vector<Output>& outputs) {
        WriteText(m_folder / "xorg.conf", Configuration(outputs));
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
    /// The built-in modes of the driver all lie above 56 Hz, so the ranges leave those of the test alone.
    static constexpr const char* kRanges = "  HorizSync 1-1000\n  VertRefresh 24.5-25.5, 49.5-50.5\n";
    static constexpr int kBlankColumns = 160, kBlankLines = 40;

    static std::string Modeline(const Mode& mode) {
        const int columns = mode.width + kBlankColumns, lines = mode.height + kBlankLines;
        std::ostringstream text;
        text << std::fixed << "  Modeline \"" << mode.width << "x" << mode.height << "-" << mode.rate << "\" "
             << static_cast<double>(columns) * lines * mode.rate / 1e6 << " " << mode.width << " " << mode.width + 48
             << " " << mode.width + 80 << " " << columns << " " << mode.height << " " << mode.height + 3 << " "
             << mode.height + 8 << " " << lines << "\n";
        return text.str();
    }

    static std::string Configuration(const std::vector<Output>& outputs) {
        std::ostringstream monitors, device;
        int left = 0;
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            const Mode& first = outputs[i].front();
            monitors << "Section \"Monitor\"\n  Identifier \"Monitor" << i << "\"\n"
                     << kRanges << "  Option \"DefaultModes\" \"false\"\n  Option \"Enable\" \"true\"\n"
                     << "  Option \"Position\" \"" << left << " 0\"\n  Option \"PreferredMode\" \"" << first.width
                     << "x" << first.height << "-" << first.rate << "\"\n";
            if (i == 0) monitors << "  Option \"Primary\" \"true\"\n";
            for (const Mode& mode : outputs[i]) monitors << Modeline(mode);
            monitors << "EndSection\n";
            device << "  Option \"Monitor-DUMMY" << i << "\" \"Monitor" << i << "\"\n";
            left += first.width;
        }
        return "Section \"ServerFlags\"\n  Option \"AutoAddDevices\" \"false\"\nEndSection\n" + monitors.str() +
               "Section \"Device\"\n  Identifier \"Card\"\n  Driver \"dummy\"\n  VideoRam 131072\n" + device.str() +
               "EndSection\nSection \"Monitor\"\n  Identifier \"Any\"\nEndSection\nSection \"Screen\"\n  Identifier "
               "\"Screen\"\n  Device \"Card\"\n  Monitor \"Any\"\n"
               "  DefaultDepth 24\n  SubSection \"Display\"\n    Depth 24\n    Virtual 5760 2400\n  EndSubSection\n"
               "EndSection\n";
    }

    TempFolder m_folder;
    ChildProcess m_process;
    std::string m_number;
};

}  // namespace kestrum::real
