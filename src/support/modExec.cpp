#include "support/modExec.h"

#include "host/ResumeNext.h"

namespace kestrum::modExec {
namespace {

constexpr std::int32_t kShellPollMs = 250;
constexpr std::int32_t kCancellablePollMs = 100;

using Process = std::unique_ptr<host::IProcess>;

/// The child of a shell line; null, with a trace, if it cannot be started.
Process TryStartShell(const support::Context& c, const String& commandLine) {
    Process process;
    const host::ResumeNext attempt{c.host.trace};
    attempt.Set(process, [&] { return c.host.processes.StartShell(commandLine); });
    return process;
}

}  // namespace

void ShellAndWait(const support::Context& c, const String& commandLine) {
    const Process process = TryStartShell(c, commandLine);
    if (!process) return;
    std::optional<std::int32_t> code;
    while (!code) {
        c.host.loop.Sleep(kShellPollMs);
        code = process->ExitCode();
        c.host.loop.DoEvents();
    }
}

std::int32_t RunCancellable(const support::Context& c, const String& commandLine) {
    c.support.cancelRun = false;
    const Process process = TryStartShell(c, commandLine);
    if (!process) return 0;
    bool cancelled = false;
    std::optional<std::int32_t> code;
    while (!code) {
        if (c.support.cancelRun && !cancelled) {
            process->Terminate();
            cancelled = true;
        }
        c.host.loop.Sleep(kCancellablePollMs);
        code = process->ExitCode();
        c.host.loop.DoEvents();
    }
    return cancelled ? 0 : *code;
}

bool ShellExecuteWait(const support::Context& c, const String& file, const std::vector<String>& parameters, bool wait) {
    if (parameters.empty() && !wait) return c.host.processes.OpenWithDesktop(file);
    Process process;
    const host::ResumeNext attempt{c.host.trace};
    if (!attempt.Set(process, [&] { return c.host.processes.Start(file, parameters); })) return false;
    while (wait && !process->ExitCode()) c.host.loop.Sleep(kCancellablePollMs);
    return true;
}

}  // namespace kestrum::modExec
