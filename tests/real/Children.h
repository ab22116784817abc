// The children of the test program, found as the system lists them.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "real/ChildProcess.h"

namespace kestrum::real {

/// Process id of a living child of this program whose name is `name`; -1 if there is none.
inline pid_t FindChild(const std::string& name) {
    std::error_code ignored;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", ignored)) {
        std::istringstream children(ReadText((task.path() / "children").string()));
        for (pid_t pid = 0; children >> pid;) {
            const std::string folder = "/proc/" + std::to_string(pid);
            const bool isZombie = ReadText(folder + "/stat").find(") Z") != std::string::npos;
            if (ReadText(folder + "/comm") == name + "\n" && !isZombie) return pid;
        }
    }
    return -1;
}

}  // namespace kestrum::real
