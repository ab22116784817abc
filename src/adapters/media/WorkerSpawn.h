// Starting the media worker with one end of a socket pair.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace kestrum::adapters {

struct SpawnedWorker {
    pid_t pid = -1;
    int socket = -1;  ///< our end
};

/// Nothing if the program cannot be started.
std::optional<SpawnedWorker> SpawnWorker(const std::string& program);

}  // namespace kestrum::adapters
