#include "adapters/media/ConversionProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <system_error>

#include "host/IKsOptimize.h"

extern char** environ;

namespace kestrum::adapters {

namespace {

/// How long a process that was asked to end may take before it is killed. Writing the tables of a large movie is the
/// longest thing that it does between two looks at the request.
constexpr int kPatienceMs = 20000;

/// What the file actions of a spawn need, freed with the scope.
class SpawnFiles {
  public:
    SpawnFiles(int input, int output) {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
    }
    ~SpawnFiles() { posix_spawn_file_actions_destroy(&m_actions); }
    SpawnFiles(const SpawnFiles&) = delete;
    SpawnFiles& operator=(const SpawnFiles&) = delete;
    const posix_spawn_file_actions_t* Actions() const { return &m_actions; }

  private:
    posix_spawn_file_actions_t m_actions;
};

[[noreturn]] void Fail(const std::string& doing, int reason) {
    throw std::runtime_error("Cannot " + doing + ": " + std::generic_category().message(reason));
}

std::int32_t StatusOfEnd(const std::string& word) {
    if (word == "finished") return host::job_status::kFinished;
    if (word == "memory") return host::job_status::kOutOfMemory;
    if (word == "size") return host::job_status::kSizeLimit;
    return host::job_status::kFailed;
}

}  // namespace

ConversionProcess::ConversionProcess(const std::string& program, const std::vector<std::string>& arguments)
    : m_end(host::job_status::kFailed) {
    Spawn(program, arguments);
    m_reader = std::thread([this] { ReadLines(); });
}

void ConversionProcess::Spawn(const std::string& program, const std::vector<std::string>& arguments) {
    int control[2];
    int output[2];
    // A socket for the requests: writing to a process that is gone must not raise a signal here.
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, control) != 0) Fail("start " + program, errno);
    if (pipe2(output, O_CLOEXEC) != 0) {
        const int reason = errno;
        close(control[0]);
        close(control[1]);
        Fail("start " + program, reason);
    }
    std::vector<char*> words = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const SpawnFiles files(control[1], output[1]);
    const int result = posix_spawn(&m_pid, program.c_str(), files.Actions(), nullptr, words.data(), environ);
    close(control[1]);
    close(output[1]);
    m_control = control[0];
    m_output = output[0];
    if (result == 0) return;
    close(m_control);
    close(m_output);
    Fail("start " + program, result);
}

ConversionProcess::~ConversionProcess() {
    shutdown(m_control, SHUT_RDWR);  // the process reads the end of its input
    if (!WaitForEnd(kPatienceMs)) {
        const std::lock_guard lock(m_pidMutex);
        if (!m_reaped) kill(m_pid, SIGKILL);
    }
    m_reader.join();
    close(m_control);
    close(m_output);
}

bool ConversionProcess::WaitForEnd(int milliseconds) {
    constexpr int kStepMs = 10;
    for (int waited = 0; !m_reaped && waited < milliseconds; waited += kStepMs)
        std::this_thread::sleep_for(std::chrono::milliseconds(kStepMs));
    return m_reaped;
}

void ConversionProcess::Stop() {
    static constexpr char kLine[] = "stop\n";
    // A process that is gone needs no request.
    [[maybe_unused]] const ssize_t sent = send(m_control, kLine, sizeof kLine - 1, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void ConversionProcess::ReadLines() {
    std::string line;
    char buffer[1024];
    while (true) {
        const ssize_t count = read(m_output, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        for (ssize_t i = 0; i < count; ++i) {
            if (buffer[i] != '\n') {
                line += buffer[i];
                continue;
            }
            TakeLine(line);
            line.clear();
        }
    }
    Reap();
    m_status = m_end;
}

void ConversionProcess::TakeLine(const std::string& line) {
    if (line.rfind("pos ", 0) == 0) {
        const long long position = std::atoll(line.c_str() + 4);
        m_status =
            static_cast<std::int32_t>(std::clamp<long long>(position, 0, std::numeric_limits<std::int32_t>::max()));
    } else if (line.rfind("end ", 0) == 0) {
        m_end = StatusOfEnd(line.substr(4));
    }
}

void ConversionProcess::Reap() {
    // Waits without taking the process away, so that its number stays its own until the lock is held.
    siginfo_t ended = {};
    while (waitid(P_PID, static_cast<id_t>(m_pid), &ended, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    const std::lock_guard lock(m_pidMutex);
    waitpid(m_pid, nullptr, 0);
    m_reaped = true;
}

}  // namespace kestrum::adapters
