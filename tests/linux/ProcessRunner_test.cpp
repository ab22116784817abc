// The process runner over real children: whatever a tool does, the caller gets on, and nothing of it is left behind.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>

#include "adapters/linux/EventLoop.h"
#include "adapters/linux/LinuxFileSystem.h"
#include "adapters/linux/LinuxProcesses.h"
#include "adapters/sim/World.h"
#include "linux/RecordingTrace.h"
#include "real/ChildProcess.h"
#include "support/frmExecCmd.h"
#include "support/modExec.h"

namespace kestrum::platform {
namespace {

namespace files = std::filesystem;

std::size_t OpenDescriptors() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : files::directory_iterator("/proc/self/fd")) ++count;
    return count;
}

/// Children of this process, zombies included.
std::set<std::string> OwnChildren() {
    std::set<std::string> children;
    for (const auto& task : files::directory_iterator("/proc/self/task")) {
        std::ifstream list(task.path() / "children");
        for (std::string pid; list >> pid;) children.insert(pid);
    }
    return children;
}

class ProcessRunnerTest : public testing::Test {
  protected:
    void SetUp() override {
        m_before = OpenDescriptors();
        m_children = OwnChildren();
    }
    void TearDown() override {
        EXPECT_EQ(OpenDescriptors(), m_before);
        EXPECT_TRUE(real::WaitFor([&] { return OwnChildren() == m_children; })) << "a child or a zombie is left";
    }

    /// An executable script.
    String Tool(const std::string& name, const std::string& body) {
        const files::path path = m_folder.Path() / name;
        std::ofstream(path) << "#!/bin/bash\n" << body << "\n";
        chmod(path.c_str(), 0755);
        return host::FromUtf8(path.string());
    }
    void RunInWindow(const String& tool, const std::vector<String>& words = {}, bool useShell = false) {
        auto& form = m_forms.Get<frmExecCmd>(m_c);
        form.InitCmd(tool, words, useShell);
        form.ShowModal();
        EXPECT_FALSE(m_forms.IsFormLoaded(u"frmExecCmd"));
    }
    /// Cancels the window as soon as `path` exists.
    std::unique_ptr<host::ITimer> CancelWhenThere(const files::path& path) {
        return m_loop.StartTimer(u"cancel", 20, host::TimerReentry::Entered, [this, path] {
            if (files::exists(path)) m_forms.Get<frmExecCmd>(m_c).Cancel();
        });
    }
    files::path File(const std::string& name) const { return m_folder.Path() / name; }
    std::string TextOf(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::size_t m_before = 0;
    std::set<std::string> m_children;
    real::TempFolder m_folder;
    sim::World m_world;
    RecordingTrace m_trace;
    EventLoop m_loop{m_trace};
    LinuxFileSystem m_fs;
    LinuxProcesses m_processes;
    ui::HeadlessPresenter m_presenter{m_loop};
    host::Host m_host = m_world.HostWith(
        {.loop = &m_loop, .fs = &m_fs, .processes = &m_processes, .presenter = &m_presenter, .trace = &m_trace});
    support::State m_state;
    ui::Forms m_forms{m_presenter, m_loop};
    support::Context m_c{m_host, m_forms, m_state};
};

TEST_F(ProcessRunnerTest, Window_OfAToolWithBlanksAndUnicode_HandsItsWordsOver) {
    const String tool = Tool("a tool 工具 \"q\"", "printf '%s|' \"$@\" > \"$(dirname \"$0\")/words\"");
    RunInWindow(tool, {u"my lecture.ktr", u"課程 'x'", u"", u"-y", u"$HOME"});
    EXPECT_EQ(TextOf("words"), "my lecture.ktr|課程 'x'||-y|$HOME|");
}

TEST_F(ProcessRunnerTest, Window_LetsEventsRun_WhileTheToolWorks) {
    int events = 0;
    const auto timer = m_loop.StartTimer(u"t", 20, host::TimerReentry::Skipped, [&] { ++events; });
    RunInWindow(Tool("slow", "sleep 1"));
    EXPECT_GE(events, 3);
}

TEST_F(ProcessRunnerTest, Window_OfAToolThatHangs_EndsItOnCancel) {
    const auto cancel = CancelWhenThere(File("up"));
    RunInWindow(Tool("hang", "trap '' TERM INT HUP; touch \"$(dirname \"$0\")/up\"; while :; do sleep 1000; done"));
}

TEST_F(ProcessRunnerTest, AFloodOfOutput_NeitherBlocksNorIsKept) {
    const String flood = Tool("flood", "head -c 100000000 /dev/zero; head -c 100000000 /dev/zero >&2");
    RunInWindow(flood);
    modExec::ShellAndWait(m_c, flood);
    EXPECT_EQ(modExec::RunCancellable(m_c, flood), 0);
    EXPECT_TRUE(modExec::ShellExecuteWait(m_c, flood, {}, true));
}

TEST_F(ProcessRunnerTest, InvalidUtf8AndNuls_InTheOutput_AreNobodysBusiness) {
    const String noise = Tool("noise", "printf '\\xff\\xfe\\x00\\xc3'; printf '\\xed\\xa0\\x80' >&2; exit 4");
    EXPECT_EQ(modExec::RunCancellable(m_c, noise), 4);
    RunInWindow(noise);
}

TEST_F(ProcessRunnerTest, AMissingTool_IsToldByTheWindow_AndEndsTheOthersAtOnce) {
    RunInWindow(u"/nowhere/tool ");
    ASSERT_EQ(m_world.box.Shown().size(), 1U);
    EXPECT_EQ(m_world.box.Shown()[0].text, u"Execution failed because \"/nowhere/tool\" does not exist!");
    modExec::ShellAndWait(m_c, u"/nowhere/tool");
    EXPECT_EQ(modExec::RunCancellable(m_c, u"/nowhere/tool"), 127);
    EXPECT_FALSE(modExec::ShellExecuteWait(m_c, u"/nowhere/tool", {u"x"}, true));
}

TEST_F(ProcessRunnerTest, AFileThatCannotBeRun_ClosesTheWindow) {
    std::ofstream(File("text")) << "no program";
    RunInWindow(host::FromUtf8(File("text").string()));
}

TEST_F(ProcessRunnerTest, AToolThatDiesByASignal_EndsTheWait) {
    const String dying = Tool("dying", "kill -SEGV $$");
    EXPECT_EQ(modExec::RunCancellable(m_c, dying), 128 + SIGSEGV);
    modExec::ShellAndWait(m_c, dying);
    RunInWindow(dying);
}

TEST_F(ProcessRunnerTest, AGrandchildThatHoldsTheOutput_DoesNotHoldTheCaller) {
    const String tool =
        Tool("parent", "sleep 1000 & echo $! >> \"$(dirname \"$0\")/grandchildren\"; disown; echo out; exit 0");
    RunInWindow(tool);
    modExec::ShellAndWait(m_c, tool);
    EXPECT_EQ(modExec::RunCancellable(m_c, tool), 0);
    EXPECT_TRUE(modExec::ShellExecuteWait(m_c, tool, {}, true));
    std::ifstream list(File("grandchildren"));
    int count = 0;
    for (pid_t pid; list >> pid; ++count) EXPECT_EQ(kill(pid, SIGKILL), 0) << "a tool's background work goes on";
    EXPECT_EQ(count, 4);
}

TEST_F(ProcessRunnerTest, Cancel_EndsTheGrandchildrenToo) {
    const auto cancel = CancelWhenThere(File("up"));
    RunInWindow(Tool("parent", "d=$(dirname \"$0\"); sleep 1000 & echo $! > \"$d/pid\"; touch \"$d/up\"; wait"));
    const pid_t grandchild = std::stoi(TextOf("pid"));
    EXPECT_TRUE(real::WaitFor([&] {
        std::ifstream stat("/proc/" + std::to_string(grandchild) + "/stat");
        std::string number, name, state;
        return !(stat >> number >> name >> state) || state == "Z";
    }));
}

TEST_F(ProcessRunnerTest, RunCancellable_OnRequest_EndsAHangingTool) {
    const String hang = Tool("hang", "touch \"$(dirname \"$0\")/up\"; sleep 1000");
    const auto cancel = m_loop.StartTimer(u"cancel", 20, host::TimerReentry::Skipped, [&] {
        if (files::exists(File("up"))) m_state.cancelRun = true;
    });
    EXPECT_EQ(modExec::RunCancellable(m_c, hang), 0);
}

TEST_F(ProcessRunnerTest, ThroughTheShell_TheWindowWaitsToo) {
    RunInWindow(Tool("work", "sleep 0.3; touch \"$(dirname \"$0\")/done\""), {u"x"}, true);
    EXPECT_TRUE(files::exists(File("done")));
}

TEST_F(ProcessRunnerTest, AWindowThatIsUnloadedMeanwhile_LetsItsToolGoOn_AndReapsIt) {
    const auto unload = m_loop.StartTimer(u"unload", 20, host::TimerReentry::Skipped, [&] {
        if (files::exists(File("up"))) m_forms.UnloadAll();
    });
    RunInWindow(Tool("going on", "d=$(dirname \"$0\"); touch \"$d/up\"; sleep 1; touch \"$d/done\""));
    EXPECT_FALSE(files::exists(File("done")));
    EXPECT_TRUE(real::WaitFor([&] { return files::exists(File("done")); }));
}

TEST_F(ProcessRunnerTest, AHundredTools_LeaveNothingBehind) {
    const String quick = Tool("quick", "exit 3");
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(modExec::ShellExecuteWait(m_c, quick, {u"x"}, i % 2 == 0));
}

}  // namespace
}  // namespace kestrum::platform
