#include "adapters/linux/EndSignals.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include "adapters/linux/EventLoop.h"
#include "linux/RecordingTrace.h"

namespace kestrum::platform {
namespace {

/// The exit code of a process of its own, which first sends itself `number` and then runs its loop.
int CodeAfter(int number) {
    const pid_t child = fork();
    if (child == 0) {
        RecordingTrace trace;
        EventLoop loop(trace);
        bool ended = false;
        const EndSignals signals(loop, [&](int) { ended = true; });
        kill(getpid(), number);
        loop.RunUntil([&] { return ended; });
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(EndSignals, EachOfThem_BecomesATaskOfTheLoop) {
    EXPECT_EQ(CodeAfter(SIGTERM), 7);
    EXPECT_EQ(CodeAfter(SIGINT), 7);
    EXPECT_EQ(CodeAfter(SIGHUP), 7);
    EXPECT_EQ(CodeAfter(SIGKILL), -SIGKILL);
}

}  // namespace
}  // namespace kestrum::platform
