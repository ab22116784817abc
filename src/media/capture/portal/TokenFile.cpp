#include "media/capture/portal/TokenFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kestrum::media {
namespace {

namespace fs = std::filesystem;

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

fs::path StateFolder() {
    const std::string state = Variable("XDG_STATE_HOME");
    return state.empty() ? fs::path(Variable("HOME")) / ".local/state" : fs::path(state);
}

bool WriteAll(const std::string& path, const std::string& text) {
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0) return false;
    const bool isWritten = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    return close(fd) == 0 && isWritten;
}

}  // namespace

TokenFile::TokenFile() : m_path(StateFolder() / "kestrum/screen-cast") {}

std::string TokenFile::Read() const {
    std::ifstream file(m_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void TokenFile::Write(const std::string& token) const {
    std::error_code ignored;
    if (token.empty()) {
        fs::remove(m_path, ignored);
        return;
    }
    fs::create_directories(fs::path(m_path).parent_path(), ignored);
    const std::string fresh = m_path + ".new";
    if (WriteAll(fresh, token)) fs::rename(fresh, m_path, ignored);
}

}  // namespace kestrum::media
