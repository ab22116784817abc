#include "adapters/sim/Processes.h"

namespace kestrum::sim {

/// One run of a script. It ends by the clock, whether anybody pumps or only asks for the exit code.
class Processes::Process : public host::IProcess {
  public:
    Process(EventLoop& loop, std::int64_t id, Program program, std::shared_ptr<StartedProcess> data)
        : m_id(id), m_run(std::make_shared<Run>(Run{loop, loop.Elapsed() + program.durationMs, program, data})) {
        loop.After(program.durationMs, [run = m_run] { run->Finish(); });
    }
    std::int64_t Id() override { return m_id; }
    std::optional<std::int32_t> ExitCode() override {
        m_run->Finish();
        return m_run->data->exitCode;
    }
    void Terminate() override {
        constexpr std::int32_t kKilled = 128 + 9;
        m_run->Finish();
        if (m_run->data->exitCode) return;
        m_run->data->terminated = true;
        m_run->data->exitCode = kKilled;
    }

  private:
    struct Run {
        EventLoop& loop;
        std::int64_t endsAt;
        Program program;
        std::shared_ptr<StartedProcess> data;

        void Finish() {
            if (data->exitCode || loop.Elapsed() < endsAt) return;
            data->exitCode = program.exitCode;
            if (!program.effect) return;
            if (auto code = program.effect(data->arguments)) data->exitCode = code;
        }
    };
    std::int64_t m_id;
    std::shared_ptr<Run> m_run;
};

Processes::Processes(Faults& faults, EventLoop& loop, Transcript& transcript, PathStyle style)
    : m_faults(faults),
      m_loop(loop),
      m_transcript(transcript),
      m_rules(style),
      m_ending(style == PathStyle::Windows ? u".exe" : u"") {}

// A program file has the platform's ending; a bare name, which the system looks up, may go without.
String Processes::BaseName(const String& program) const {
    const String name = m_rules.NameOf(program);
    if (name.ends_with(m_ending)) return name.substr(0, name.size() - m_ending.size());
    if (name == program) return name;
    throw host::Error(host::ErrorNumber::FileNotFound, u"processes.Start", u"File not found: " + program);
}

std::unique_ptr<host::IProcess> Processes::Launch(const String& name, const std::vector<String>& arguments) {
    auto script = programs.find(name);
    if (script == programs.end()) {
        throw host::Error(host::ErrorNumber::FileNotFound, u"processes.Start", u"File not found: " + name);
    }
    auto data = std::make_shared<StartedProcess>();
    data->program = name;
    data->arguments = arguments;
    started.push_back(data);
    String line = u"process " + name;
    for (const String& argument : arguments) line += u" " + argument;
    m_transcript.Add(line);
    constexpr std::int64_t kFirstId = 4000;
    return std::make_unique<Process>(m_loop, kFirstId + static_cast<std::int64_t>(started.size()), script->second,
                                     data);
}

std::unique_ptr<host::IProcess> Processes::Start(const String& program, const std::vector<String>& arguments) {
    m_faults.Check(u"processes.Start");
    return Launch(BaseName(program), arguments);
}

std::unique_ptr<host::IProcess> Processes::StartShell(const String& commandLine) {
    m_faults.Check(u"processes.StartShell");
    const bool quoted = commandLine.starts_with(u'"');
    const String first =
        quoted ? commandLine.substr(1, commandLine.find(u'"', 1) - 1) : commandLine.substr(0, commandLine.find(u' '));
    return Launch(BaseName(first), {commandLine});
}

void Processes::StopService(const String& service) {
    m_faults.Check(u"processes.StopService");
    m_transcript.Add(u"stop service " + service);
    services[service] = u"Stopped";
}

bool Processes::OpenWithDesktop(const String& target) {
    m_transcript.Add(u"open " + target);
    if (!desktopOpens) return false;
    opened.push_back(target);
    return true;
}

bool Processes::ShowInFolder(const String& file) {
    m_transcript.Add(u"show in folder " + file);
    if (!desktopOpens) return false;
    shownInFolder.push_back(file);
    return true;
}

std::vector<StartedProcess> Processes::Runs(const String& program) const {
    std::vector<StartedProcess> runs;
    for (const auto& process : started) {
        if (process->program == program) runs.push_back(*process);
    }
    return runs;
}

}  // namespace kestrum::sim
