#include "adapters/media/WorkerSpawn.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kestrum::adapters {
namespace {

// The descriptor under which the worker finds its end.
constexpr int kWorkerFd = 3;

/// The worker gets a session of its own: a Ctrl-C or a closed terminal is the recorder's business, which ends the
/// recording in order.
bool Spawn(const std::string& program, int theirEnd, pid_t& pid) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, theirEnd, kWorkerFd);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    std::string words[] = {program, "serve", std::to_string(kWorkerFd)};
    char* argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
    const int result = posix_spawn(&pid, program.c_str(), &actions, &attributes, argv, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return result == 0;
}

}  // namespace

std::optional<SpawnedWorker> SpawnWorker(const std::string& program) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return std::nullopt;
    SpawnedWorker worker;
    worker.socket = ends[0];
    const bool started = Spawn(program, ends[1], worker.pid);
    close(ends[1]);
    if (started) return worker;
    close(ends[0]);
    return std::nullopt;
}

}  // namespace kestrum::adapters
