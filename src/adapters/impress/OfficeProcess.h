// The process of an office that we start ourselves: the real program, not the script around it, in a process group of
// its own, so that Ctrl-C in our terminal does not end it and its process id is the one to watch and to end.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "host/String.h"

namespace kestrum::impress {

class OfficeProcess {
  public:
    struct Options {
        std::filesystem::path programFolder;
        std::filesystem::path profile;
        std::string pipe;
        std::string display;    ///< X display; empty: as in our environment
        std::string vclPlugin;  ///< toolkit; empty: the desktop's
    };

    /// Raises host::Error with a sentence if Impress is not installed.
    explicit OfficeProcess(const Options& options);
    /// Ends the process the hard way if it still runs and was not released.
    ~OfficeProcess();
    OfficeProcess(const OfficeProcess&) = delete;
    OfficeProcess& operator=(const OfficeProcess&) = delete;

    pid_t Id() const { return m_pid; }
    /// Exit code, or 128 + signal; none while it runs. A start that asks to be repeated (a fresh profile) is repeated.
    std::optional<int> ExitCode();
    /// False if it still runs after `limit`.
    bool WaitForEnd(std::chrono::milliseconds limit);
    void Kill();
    /// The process goes on without us.
    void Release() { m_pid = 0; }

  private:
    void Start();

    Options m_options;
    pid_t m_pid = 0;
    std::optional<int> m_exitCode;
    int m_restarts = 0;
};

}  // namespace kestrum::impress
