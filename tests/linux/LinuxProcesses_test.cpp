#include "adapters/linux/LinuxProcesses.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>

#include "host/Error.h"
#include "real/ChildProcess.h"

namespace kestrum::platform {
namespace {

using real::WaitFor;

std::int32_t EndCode(host::IProcess& process) {
    EXPECT_TRUE(WaitFor([&] { return process.ExitCode().has_value(); }));
    return process.ExitCode().value_or(-1);
}

bool IsAlive(std::int64_t pid) {
    return kill(static_cast<pid_t>(pid), 0) == 0;
}

/// A number that a child wrote into a file.
std::int64_t NumberIn(const std::string& path) {
    EXPECT_TRUE(WaitFor([&] { return real::ReadText(path).ends_with('\n'); }));
    return std::stoll(real::ReadText(path));
}

class LinuxProcessesTest : public testing::Test {
  protected:
    String InFolder(const std::string& name) const { return host::FromUtf8(folder / name); }

    LinuxProcesses processes;
    real::TempFolder folder;
};

TEST_F(LinuxProcessesTest, Start_WithBlanksAndUnicode_HandsArgumentsOverAsTheyAre) {
    const std::string program = folder / "print 文 \"it\".sh";
    real::WriteText(program, "#!/bin/sh\nprintf '%s|' \"$@\" > \"$0.out\"\n");
    chmod(program.c_str(), 0755);
    const auto child = processes.Start(host::FromUtf8(program), {u"two words", u"", u"$HOME;'\"", u"讲座 \U0001F4FD"});
    EXPECT_EQ(EndCode(*child), 0);
    EXPECT_EQ(real::ReadText(program + ".out"), "two words||$HOME;'\"|讲座 \U0001F4FD|");
}

TEST_F(LinuxProcessesTest, Start_OfAMissingProgram_FailsWithItsName) {
    try {
        (void)processes.Start(InFolder("no such program"), {});
        FAIL() << "started";
    } catch (const host::Error& error) {
        EXPECT_EQ(error.Number(), host::ErrorNumber::FileNotFound);
        EXPECT_NE(error.Description().find(u"no such program"), String::npos);
    }
}

TEST_F(LinuxProcessesTest, Start_OfAFileThatIsNoProgram_IsPermissionDenied) {
    real::WriteText(folder / "data.txt", "text");
    try {
        (void)processes.Start(InFolder("data.txt"), {});
        FAIL() << "started";
    } catch (const host::Error& error) {
        EXPECT_EQ(error.Number(), host::ErrorNumber::PermissionDenied);
    }
}

TEST_F(LinuxProcessesTest, Child_ThatFloodsItsOutput_EndsByItself) {
    const auto child = processes.StartShell(u"head -c 20000000 /dev/zero; head -c 20000000 /dev/zero >&2; exit 7");
    EXPECT_EQ(EndCode(*child), 7);
}

TEST_F(LinuxProcessesTest, Child_ThatReadsItsInput_FindsItsEnd) {
    const auto child = processes.StartShell(u"cat; exit 3");
    EXPECT_EQ(EndCode(*child), 3);
}

TEST_F(LinuxProcessesTest, Terminate_EndsAHangingChildAndWhatItStarted) {
    const auto child = processes.StartShell(u"trap '' TERM; sleep 1000 & echo $! > '" + InFolder("pid") +
                                            u"'; while :; do wait; done");
    const std::int64_t grandchild = NumberIn(folder / "pid");
    EXPECT_TRUE(IsAlive(grandchild));
    EXPECT_FALSE(child->ExitCode().has_value());
    child->Terminate();
    EXPECT_EQ(EndCode(*child), 128 + SIGKILL);
    const std::string state = "/proc/" + std::to_string(grandchild) + "/stat";
    EXPECT_TRUE(WaitFor([&] {
        const std::string text = real::ReadText(state);
        return text.empty() || text.find(") Z ") != std::string::npos;
    }));
}

TEST_F(LinuxProcessesTest, Terminate_OfAChildThatEndedLongAgo_IsHarmless) {
    const auto child = processes.StartShell(u"exit 5");
    EXPECT_EQ(EndCode(*child), 5);
    child->Terminate();
    EXPECT_EQ(EndCode(*child), 5);
}

TEST_F(LinuxProcessesTest, DestroyedHandle_LeavesTheChildRunning_AndReapsItAtItsEnd) {
    std::int64_t pid = 0;
    {
        const auto child = processes.StartShell(u"while [ ! -e '" + InFolder("go") + u"' ]; do sleep 0.05; done");
        pid = child->Id();
    }
    EXPECT_TRUE(IsAlive(pid));
    real::WriteText(folder / "go", "");
    EXPECT_TRUE(WaitFor([&] { return !IsAlive(pid); }));
}

TEST_F(LinuxProcessesTest, Child_InheritsNoOpenFileOfOurs) {
    const int held = open((folder / "held").c_str(), O_CREAT | O_RDWR, 0600);
    ASSERT_GT(held, 2);
    constexpr int kNumber = 77;
    ASSERT_EQ(dup2(held, kNumber), kNumber);
    const auto child = processes.StartShell(u"test -e /proc/$$/fd/77 && exit 9; exit 0");
    EXPECT_EQ(EndCode(*child), 0);
    close(kNumber);
    close(held);
}

TEST_F(LinuxProcessesTest, OpenWithDesktop_AsksTheDesktopsOpener_AndTellsItsRefusal) {
    const std::string opener = folder / "xdg-open";
    real::WriteText(opener, "#!/bin/sh\ncase \"$1\" in *.odd) exit 3;; esac\necho \"$1\" > \"$0.asked\"\n");
    chmod(opener.c_str(), 0755);
    const real::ScopedEnv path("PATH", folder.Path().string() + ":" + std::getenv("PATH"));
    EXPECT_TRUE(processes.OpenWithDesktop(u"http://localhost/a b"));
    EXPECT_TRUE(WaitFor([&] { return real::ReadText(opener + ".asked") == "http://localhost/a b\n"; }));
    EXPECT_FALSE(processes.OpenWithDesktop(u"/x.odd"));
    EXPECT_FALSE(processes.OpenWithDesktop(u"--help"));
    EXPECT_FALSE(processes.OpenWithDesktop(u""));
}

TEST_F(LinuxProcessesTest, OpenWithDesktop_WithoutADesktop_SaysNo) {
    const real::ScopedEnv path("PATH", folder.Path().string());
    EXPECT_FALSE(processes.OpenWithDesktop(u"http://localhost/"));
}

TEST_F(LinuxProcessesTest, ProgramName_CarriesNoEnding) {
    EXPECT_EQ(processes.ProgramName(u"ffmpeg"), u"ffmpeg");
}

}  // namespace
}  // namespace kestrum::platform
