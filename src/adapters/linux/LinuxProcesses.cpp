#include "adapters/linux/LinuxProcesses.h"

#include <signal.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <unistd.h>

#include <cctype>
#include <cstring>
#include <string>
#include <thread>

#include "adapters/linux/PosixError.h"
#include "adapters/linux/SpawnSetup.h"

namespace kestrum::platform {
namespace {

/// A started child. It stays unreaped while this object lives, so that its number, and the number of its group, cannot
/// be given to another process meanwhile.
class ChildGroup : public host::IProcess {
  public:
    explicit ChildGroup(pid_t pid) : m_pid(pid) {}
    ChildGroup(const ChildGroup&) = delete;
    ChildGroup& operator=(const ChildGroup&) = delete;
    ~ChildGroup() override {
        if (waitpid(m_pid, nullptr, WNOHANG) == 0) std::thread([pid = m_pid] { waitpid(pid, nullptr, 0); }).detach();
    }

    std::int64_t Id() override { return m_pid; }

    std::optional<std::int32_t> ExitCode() override {
        siginfo_t info{};
        if (waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0) return 0;
        if (info.si_pid == 0) return std::nullopt;
        return info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status;
    }

    void Terminate() override { kill(-m_pid, SIGKILL); }

  private:
    pid_t m_pid;
};

/// The file as an address; every byte that is no letter, digit or one of a few marks is written as %XX.
std::string FileAddress(const std::string& path) {
    constexpr char kDigits[] = "0123456789ABCDEF", kPlain[] = "/-_.~";
    std::string address = "file://";
    for (const char letter : path) {
        const auto byte = static_cast<unsigned char>(letter);
        if (std::isalnum(byte) != 0 || std::strchr(kPlain, letter) != nullptr) {
            address += letter;
        } else {
            address += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return address;
}

bool AskFileManager(const std::string& path) {
    constexpr std::uint64_t kTimeoutUs = 5'000'000;  // it may have to be started
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) return false;
    sd_bus_set_method_call_timeout(bus, kTimeoutUs);
    const int result = sd_bus_call_method(bus, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                          "org.freedesktop.FileManager1", "ShowItems", nullptr, nullptr, "ass", 1,
                                          FileAddress(path).c_str(), "");
    sd_bus_flush_close_unref(bus);
    return result >= 0;
}

void SleepMs(long ms) {
    const timespec pause{0, ms * 1'000'000};
    nanosleep(&pause, nullptr);
}

}  // namespace

std::unique_ptr<host::IProcess> LinuxProcesses::Start(const String& program, const std::vector<String>& arguments) {
    std::vector<std::string> words{host::ToUtf8(program)};
    for (const String& argument : arguments) words.push_back(host::ToUtf8(argument));
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    const SpawnSetup setup(SpawnApart::Group);
    pid_t pid = 0;
    const int failed = posix_spawnp(&pid, argv[0], setup.Files(), setup.Attributes(), argv.data(), environ);
    if (failed != 0) ThrowSystemError(failed, u"Start", program);
    return std::make_unique<ChildGroup>(pid);
}

std::unique_ptr<host::IProcess> LinuxProcesses::StartShell(const String& commandLine) {
    return Start(u"/bin/sh", {u"-c", commandLine});
}

bool LinuxProcesses::OpenWithDesktop(const String& target) {
    constexpr int kPolls = 25;
    if (target.empty() || target.starts_with(u'-')) return false;
    try {
        const auto opener = Start(u"xdg-open", {target});
        for (int i = 0; i < kPolls; ++i) {
            if (const auto code = opener->ExitCode()) return *code == 0;
            SleepMs(20);
        }
        return true;
    } catch (const host::Error&) {
        return false;
    }
}

bool LinuxProcesses::ShowInFolder(const String& file) {
    if (AskFileManager(host::ToUtf8(file))) return true;
    const std::size_t end = file.rfind(u'/');
    return end != String::npos && OpenWithDesktop(end == 0 ? u"/" : file.substr(0, end));
}

}  // namespace kestrum::platform
