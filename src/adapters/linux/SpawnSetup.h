// What a child process starts with, whatever its parent has done: no descriptor of the parent's, no blocked and no
// handled signal, and no part in what the parent's terminal does. Header only, so that what is loaded into an office
// can use it.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

namespace kestrum::platform {

/// How a child stands apart from its parent.
enum class SpawnApart : short {
    Group = POSIX_SPAWN_SETPGROUP,  ///< can be ended together with its own children
    Session = POSIX_SPAWN_SETSID,   ///< and outlives the parent's terminal
};

class SpawnSetup {
  public:
    /// Input and output are the null device, and so is standard error unless a descriptor is given for it.
    explicit SpawnSetup(SpawnApart apart, int standardError = -1) {
        posix_spawn_file_actions_init(&m_files);
        for (const int fd : {STDIN_FILENO, STDOUT_FILENO}) AddNull(fd);
        if (standardError < 0) {
            AddNull(STDERR_FILENO);
        } else {
            posix_spawn_file_actions_adddup2(&m_files, standardError, STDERR_FILENO);
        }
        posix_spawn_file_actions_addclosefrom_np(&m_files, STDERR_FILENO + 1);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setflags(&m_attributes, static_cast<short>(static_cast<short>(apart) | POSIX_SPAWN_SETSIGMASK |
                                                                   POSIX_SPAWN_SETSIGDEF));
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&m_files);
        posix_spawnattr_destroy(&m_attributes);
    }

    const posix_spawn_file_actions_t* Files() const { return &m_files; }
    const posix_spawnattr_t* Attributes() const { return &m_attributes; }

  private:
    void AddNull(int fd) { posix_spawn_file_actions_addopen(&m_files, fd, "/dev/null", O_RDWR, 0); }

    posix_spawn_file_actions_t m_files;
    posix_spawnattr_t m_attributes;
};

}  // namespace kestrum::platform
