// What a user may not do, tried by tests that may run as root.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace kestrum::real {

/// Runs `body` in a child process that has no rights of root; 0 unless it said false. Asserts in it are not heard.
inline int WithoutRights(const std::function<bool()>& body) {
    const pid_t child = fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(2);
        _exit(body() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace kestrum::real
