// Child processes as scripts: a program by name, without its folder and without the platform's ".exe", has a duration
// in virtual time, an exit code and an effect that it leaves behind at its end. A program without a script cannot be
// started. Faults: "processes.Start", "processes.StartShell", "processes.StopService" (raise).
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Faults.h"
#include "adapters/sim/PathRules.h"
#include "adapters/sim/Transcript.h"
#include "host/IProcesses.h"

namespace kestrum::sim {

/// What a program does.
struct Program {
    std::int64_t durationMs = 0;
    std::int32_t exitCode = 0;
    /// Runs when the process ends by itself; its result replaces `exitCode` if it is not empty.
    std::function<std::optional<std::int32_t>(const std::vector<String>& arguments)> effect;
};

/// A process that was started.
struct StartedProcess {
    String program;
    std::vector<String> arguments;
    bool terminated = false;
    std::optional<std::int32_t> exitCode;
};

class Processes : public host::IProcesses {
  public:
    Processes(Faults& faults, EventLoop& loop, Transcript& transcript, PathStyle style = PathStyle::Linux);

    std::unique_ptr<host::IProcess> Start(const String& program, const std::vector<String>& arguments) override;
    /// The script is found by the command line's first word (in quotation marks if it has blanks); the whole line is
    /// its only argument.
    std::unique_ptr<host::IProcess> StartShell(const String& commandLine) override;
    bool OpenWithDesktop(const String& target) override;
    bool ShowInFolder(const String& file) override;
    String ServiceState(const String& service) override { return services.contains(service) ? services[service] : u""; }
    void StopService(const String& service) override;
    String ProgramName(const String& baseName) override { return baseName + m_ending; }

    /// Scripts by the program's name without its folder.
    std::map<String, Program> programs;
    /// Services of the system and their states.
    std::map<String, String> services;
    /// All that were started, in order.
    std::vector<std::shared_ptr<StartedProcess>> started;
    std::vector<String> opened, shownInFolder;
    bool desktopOpens = true;

    /// The started processes of this name.
    std::vector<StartedProcess> Runs(const String& program) const;

  private:
    class Process;
    String BaseName(const String& program) const;
    std::unique_ptr<host::IProcess> Launch(const String& name, const std::vector<String>& arguments);

    Faults& m_faults;
    EventLoop& m_loop;
    Transcript& m_transcript;
    PathRules m_rules;
    /// Of the platform's program files.
    String m_ending;
};

}  // namespace kestrum::sim
