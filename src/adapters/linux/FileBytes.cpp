#include "adapters/linux/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

#include "adapters/linux/Descriptor.h"
#include "adapters/linux/PosixError.h"

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;

constexpr mode_t kNewFileMode = 0666;
constexpr std::size_t kBlock = 1 << 20;

[[noreturn]] void Fail(const char16_t* source, const stdfs::path& path) {
    ThrowSystemError(errno, source, host::FromUtf8(path.native()));
}

Descriptor Open(const stdfs::path& path, int flags, const char16_t* source) {
    Descriptor file(open(path.c_str(), flags | O_CLOEXEC, kNewFileMode));
    if (!file) Fail(source, path);
    return file;
}

/// Number of bytes read, 0 at the end; -1 with errno set.
ssize_t ReadSome(int fd, char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t count = read(fd, buffer, size);
        if (count >= 0 || errno != EINTR) return count;
    }
}

bool WriteBytes(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(fd, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// Copies between descriptors: in the kernel where the file systems can do it (shared blocks, server-side copies),
/// through a buffer from where that stopped.
bool Pump(int from, int to) {
    for (;;) {
        const ssize_t count = copy_file_range(from, nullptr, to, nullptr, kBlock * 64, 0);
        if (count == 0) break;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EIO)) return false;
        if (count < 0) break;
    }
    std::vector<char> buffer(kBlock);
    for (;;) {
        const ssize_t count = ReadSome(from, buffer.data(), buffer.size());
        if (count <= 0) return count == 0;
        if (!WriteBytes(to, {buffer.data(), static_cast<std::size_t>(count)})) return false;
    }
}

bool IsSameFile(int a, int b) {
    struct stat first {
    }, second{};
    return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

}  // namespace

std::string ReadAll(const stdfs::path& path) {
    const Descriptor file = Open(path, O_RDONLY, u"ReadFile");
    std::string bytes;
    std::vector<char> buffer(kBlock);
    for (;;) {
        const ssize_t count = ReadSome(file.Get(), buffer.data(), buffer.size());
        if (count < 0) Fail(u"ReadFile", path);
        if (count == 0) return bytes;
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void WriteAll(const stdfs::path& path, const std::string& bytes, bool append) {
    const char16_t* const source = append ? u"AppendFile" : u"WriteFile";
    const Descriptor file = Open(path, O_WRONLY | O_CREAT | (append ? O_APPEND : O_TRUNC), source);
    if (!WriteBytes(file.Get(), bytes)) Fail(source, path);
}

void CopyBytes(const stdfs::path& source, const stdfs::path& target) {
    const Descriptor from = Open(source, O_RDONLY, u"CopyFile");
    const Descriptor to = Open(target, O_WRONLY | O_CREAT, u"CopyFile");
    if (IsSameFile(from.Get(), to.Get())) return;
    if (ftruncate(to.Get(), 0) == 0 && Pump(from.Get(), to.Get())) return;
    const int reason = errno;
    unlink(target.c_str());
    errno = reason;
    Fail(u"CopyFile", target);
}

}  // namespace kestrum::platform
