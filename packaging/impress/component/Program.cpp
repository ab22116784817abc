#include "Program.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <osl/file.hxx>
#include <string>
#include <thread>
#include <vector>

#include "Text.h"
#include "adapters/linux/SpawnSetup.h"

namespace kestrum::extension {
namespace {

constexpr const char* kInstalledProgram = "/usr/bin/kestrum";

std::string Bytes(const rtl::OUString& text) {
    return rtl::OUStringToOString(text, RTL_TEXTENCODING_UTF8).getStr();
}

/// What the program writes to standard error, in memory: a pipe would need a reader.
int MakeNotes() {
    return memfd_create("kestrum", MFD_CLOEXEC);
}

std::string Read(int notes) {
    constexpr off_t kMost = 16384;
    const off_t size = lseek(notes, 0, SEEK_END);
    std::string text(static_cast<std::size_t>(std::max<off_t>(0, std::min(size, kMost))), '\0');
    const auto read = pread(notes, text.data(), text.size(), size - static_cast<off_t>(text.size()));
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, read)));
    return text;
}

/// The last line that the program wrote under its own name.
rtl::OUString LastSentence(const std::string& text) {
    const std::string name = "kestrum: ";
    const auto at = text.rfind(name);
    if (at == std::string::npos || (at > 0 && text[at - 1] != '\n')) return {};
    const auto begin = at + name.size();
    const auto line = text.substr(begin, text.find('\n', begin) - begin);
    return rtl::OUString(line.c_str(), static_cast<sal_Int32>(line.size()), RTL_TEXTENCODING_UTF8);
}

ProgramEnd EndOf(int status, const std::string& text) {
    constexpr int kEndedBySignal = 128;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    const bool byRequest =
        code == kEndedBySignal + SIGINT || code == kEndedBySignal + SIGTERM || code == kEndedBySignal + SIGHUP;
    return {code == 0 || byRequest, LastSentence(text)};
}

std::vector<char*> Pointers(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (auto& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t Spawn(std::vector<std::string> words, int notes) {
    const platform::SpawnSetup setup(platform::SpawnApart::Session, notes);
    pid_t pid = 0;
    const int failure =
        posix_spawn(&pid, words.front().c_str(), setup.Files(), setup.Attributes(), Pointers(words).data(), environ);
    return failure == 0 ? pid : 0;
}

}  // namespace

rtl::OUString ProgramPath() {
    rtl::OUString path;
    osl::FileBase::getSystemPathFromFileURL(Text("KESTRUM_PROGRAM"), path);
    if (!path.isEmpty() && access(Bytes(path).c_str(), X_OK) == 0) return path;
    return rtl::OUString::createFromAscii(kInstalledProgram);
}

bool StartProgram(const rtl::OUString& pipe, bool automatic, std::function<void(const ProgramEnd&)> ended) {
    std::vector<std::string> words{Bytes(ProgramPath()), "attach", "--pipe", Bytes(pipe)};
    if (automatic) words.emplace_back("--automatic");
    const int notes = MakeNotes();
    const pid_t pid = Spawn(std::move(words), notes);
    if (pid == 0) {
        close(notes);
        return false;
    }
    std::thread([pid, notes, ended = std::move(ended)] {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        const std::string text = Read(notes);
        close(notes);
        ended(EndOf(status, text));
    }).detach();
    return true;
}

}  // namespace kestrum::extension
