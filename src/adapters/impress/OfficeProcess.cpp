#include "adapters/impress/OfficeProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "adapters/impress/SandboxedOffice.h"
#include "adapters/linux/SpawnSetup.h"
#include "host/Error.h"

namespace kestrum::impress {

namespace fs = std::filesystem;

namespace {

constexpr const char* kProgram = "soffice.bin";
constexpr const char* kImpressPart = "libsdlo.so";  // missing where only other parts of the office are installed
constexpr int kRestartCodes[] = {79, 81};
constexpr int kMostRestarts = 3;

using Strings = std::vector<std::string>;

bool Names(const std::string& entry, const char* variable) {
    const auto length = std::strlen(variable);
    return entry.compare(0, length, variable) == 0 && entry[length] == '=';
}

void Set(Strings& environment, const char* variable, const std::string& value) {
    std::erase_if(environment, [&](const std::string& entry) { return Names(entry, variable); });
    environment.push_back(std::string(variable) + "=" + value);
}

/// File names outside ASCII can be opened only under a locale of UTF-8.
void EnsureUtf8(Strings& environment) {
    const char* inForce = "";
    for (const char* variable : {"LANG", "LC_CTYPE", "LC_ALL"})  // the later, the stronger
        if (const char* value = std::getenv(variable); value && *value) inForce = value;
    if (std::strstr(inForce, "UTF-8") || std::strstr(inForce, "utf8")) return;
    std::erase_if(environment, [](const std::string& entry) { return Names(entry, "LC_ALL"); });
    Set(environment, "LC_CTYPE", "C.UTF-8");
}

/// Its windows are found and measured by X, in a Wayland session too.
void BecomeXClient(Strings& environment, const std::string& display) {
    std::erase_if(environment, [](const std::string& entry) { return Names(entry, "WAYLAND_DISPLAY"); });
    Set(environment, "GDK_BACKEND", "x11");
    Set(environment, "QT_QPA_PLATFORM", "xcb");
    if (!display.empty()) Set(environment, "DISPLAY", display);
}

Strings EnvironmentFor(const OfficeProcess::Options& options) {
    Strings environment;
    for (char** entry = environ; *entry; ++entry) environment.emplace_back(*entry);
    EnsureUtf8(environment);
    if (!options.vclPlugin.empty()) Set(environment, "SAL_USE_VCLPLUGIN", options.vclPlugin);
    BecomeXClient(environment, options.display);
    return environment;
}

std::vector<char*> Pointers(Strings& strings) {
    std::vector<char*> pointers;
    for (auto& text : strings) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t Spawn(Strings arguments, Strings environment) {
    const platform::SpawnSetup setup(platform::SpawnApart::Group);
    pid_t pid = 0;
    const int failure = posix_spawn(&pid, arguments.front().c_str(), setup.Files(), setup.Attributes(),
                                    Pointers(arguments).data(), Pointers(environment).data());
    if (failure != 0)
        throw host::Error(host::ErrorNumber::Automation, u"OfficeProcess",
                          u"Impress cannot be started: " + host::FromUtf8(std::strerror(failure)) + u".");
    return pid;
}

void CheckInstalled(const fs::path& folder) {
    if (fs::exists(folder / kProgram) && fs::exists(folder / kImpressPart)) return;
    const char* home = std::getenv("HOME");
    throw host::Error(host::ErrorNumber::FileNotFound, u"OfficeProcess",
                      MissingOfficeSentence(SandboxWithOffice("/", home ? home : "/nonexistent")));
}

}  // namespace

OfficeProcess::OfficeProcess(const Options& options) : m_options(options) {
    CheckInstalled(options.programFolder);
    Start();
}

OfficeProcess::~OfficeProcess() {
    if (m_pid == 0 || ExitCode()) return;
    Kill();
    WaitForEnd(std::chrono::seconds(10));
}

void OfficeProcess::Start() {
    Strings arguments{(m_options.programFolder / kProgram).string(),
                      "--norestore",
                      "--nologo",
                      "--nodefault",
                      "-env:UserInstallation=file://" + m_options.profile.string(),
                      "--accept=pipe,name=" + m_options.pipe + ";urp;StarOffice.ComponentContext"};
    m_pid = Spawn(std::move(arguments), EnvironmentFor(m_options));
}

std::optional<int> OfficeProcess::ExitCode() {
    int status = 0;
    if (m_exitCode || m_pid == 0 || waitpid(m_pid, &status, WNOHANG) != m_pid) return m_exitCode;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    const bool again = code == kRestartCodes[0] || code == kRestartCodes[1];
    if (again && m_restarts++ < kMostRestarts)
        Start();
    else
        m_exitCode = code;
    return m_exitCode;
}

bool OfficeProcess::WaitForEnd(std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    while (!ExitCode()) {
        if (std::chrono::steady_clock::now() >= until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

void OfficeProcess::Kill() {
    if (m_pid != 0 && !m_exitCode) kill(m_pid, SIGKILL);
}

}  // namespace kestrum::impress
