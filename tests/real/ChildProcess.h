// Programs that a test starts: each ends with the object that started it, by its own process id.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kestrum::real {

/// Polls `done` every 20 ms for up to `seconds`. The default is generous: machines are shared and slow.
inline bool WaitFor(const std::function<bool()>& done, double seconds = 60) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

/// What a finished program left: exit code (128 + signal if it was killed) and its standard output.
struct Outcome {
    int code = -1;
    std::string output;
};

class ChildProcess {
  public:
    struct Options {
        std::vector<std::pair<std::string, std::string>> env;  ///< set on top of the test's own environment
        bool captureOutput = false;                            ///< standard output goes to a pipe, see ReadAll
        bool quiet = false;                                    ///< standard error (and an uncaptured output) go nowhere
        int inheritedFd = -1;                                  ///< kept open in the child under the same number
    };

    ChildProcess() = default;
    ChildProcess(const std::vector<std::string>& command, const Options& options) { Start(command, options); }
    ChildProcess(ChildProcess&& other) noexcept { *this = std::move(other); }
    ChildProcess& operator=(ChildProcess&& other) noexcept {
        std::swap(m_pid, other.m_pid);
        std::swap(m_output, other.m_output);
        std::swap(m_code, other.m_code);
        return *this;
    }
    ~ChildProcess() {
        Stop();
        if (m_output >= 0) close(m_output);
    }

    pid_t Pid() const { return m_pid; }
    /// False once the program has ended.
    bool IsRunning() { return m_pid > 0 && !Reap(WNOHANG); }
    void Signal(int number) {
        if (m_pid > 0) kill(m_pid, number);
    }
    /// Waits for the end; false if it did not come in time.
    bool WaitForEnd(double seconds = 60) {
        return WaitFor([this] { return !IsRunning(); }, seconds);
    }
    /// Exit code, 128 + signal if killed, -1 while it runs.
    int ExitCode() const { return m_code; }
    /// Reads the captured output up to its end.
    std::string ReadAll() {
        std::string text;
        char buffer[4096];
        for (ssize_t n; (n = read(m_output, buffer, sizeof buffer)) > 0;) text.append(buffer, static_cast<size_t>(n));
        return text;
    }
    /// Ends the program: SIGTERM, after 5 s SIGKILL.
    void Stop() {
        if (!IsRunning()) return;
        kill(m_pid, SIGTERM);
        if (WaitForEnd(5)) return;
        kill(m_pid, SIGKILL);
        Reap(0);
    }

  private:
    void Start(const std::vector<std::string>& command, const Options& options) {
        int pipeEnds[2] = {-1, -1};
        if (options.captureOutput && pipe2(pipeEnds, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
        m_pid = fork();
        if (m_pid < 0) throw std::runtime_error("fork failed");
        if (m_pid == 0) Become(command, options, pipeEnds[1]);
        if (pipeEnds[1] >= 0) close(pipeEnds[1]);
        m_output = pipeEnds[0];
    }

    [[noreturn]] static void Become(const std::vector<std::string>& command, const Options& options, int output) {
        const int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, 0);
        if (output >= 0) dup2(output, 1);
        if (output < 0 && options.quiet) dup2(nothing, 1);
        if (options.quiet) dup2(nothing, 2);
        if (options.inheritedFd >= 0) fcntl(options.inheritedFd, F_SETFD, 0);
        for (const auto& [name, value] : options.env) setenv(name.c_str(), value.c_str(), 1);
        std::vector<char*> argv;
        for (const auto& word : command) argv.push_back(const_cast<char*>(word.c_str()));
        argv.push_back(nullptr);
        execvp(argv[0], argv.data());
        _exit(127);
    }

    bool Reap(int flags) {
        int status = 0;
        if (waitpid(m_pid, &status, flags) != m_pid) return false;
        m_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        m_pid = -1;
        return true;
    }

    pid_t m_pid = -1;
    int m_output = -1;
    int m_code = -1;
};

/// Runs a program to its end and returns its output.
inline Outcome Run(const std::vector<std::string>& command, std::vector<std::pair<std::string, std::string>> env = {}) {
    ChildProcess::Options options;
    options.env = std::move(env);
    options.captureOutput = true;
    options.quiet = true;
    ChildProcess child(command, options);
    Outcome outcome;
    outcome.output = child.ReadAll();
    child.WaitForEnd();
    outcome.code = child.ExitCode();
    return outcome;
}

/// An environment variable of the test program itself, put back at the end of the scope.
class ScopedEnv {
  public:
    ScopedEnv(std::string name, const std::string& value) : m_name(std::move(name)) {
        if (const char* old = getenv(m_name.c_str())) m_old = old, m_had = true;
        setenv(m_name.c_str(), value.c_str(), 1);
    }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;
    ~ScopedEnv() {
        if (m_had) setenv(m_name.c_str(), m_old.c_str(), 1);
        if (!m_had) unsetenv(m_name.c_str());
    }

  private:
    std::string m_name, m_old;
    bool m_had = false;
};

/// A new folder below the system's temporary folder, removed with all it holds.
class TempFolder {
  public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kestrum-test-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
        m_path = pattern;
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::filesystem::path& Path() const { return m_path; }
    std::string operator/(const std::string& name) const { return (m_path / name).string(); }

  private:
    std::filesystem::path m_path;
};

inline void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace kestrum::real
