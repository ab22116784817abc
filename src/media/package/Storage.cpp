#include "media/package/Storage.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <random>

#include "media/package/Error.h"

namespace kestrum::media {

namespace {

ErrorKind KindOf(int errorNumber) {
    switch (errorNumber) {
        case ENOENT:
        case ENOTDIR:
            return ErrorKind::kMissing;
        case EACCES:
        case EPERM:
        case EROFS:
            return ErrorKind::kNoPermission;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return ErrorKind::kDiskFull;
        default:
            return ErrorKind::kIo;
    }
}

[[noreturn]] void ThrowSystem(const char* what, const std::string& path, int errorNumber) {
    throw Error(KindOf(errorNumber), std::string(what) + " '" + path + "': " + std::strerror(errorNumber) + ".",
                errorNumber);
}

/// Pipes, folders and devices answer reads in ways no package does, or block.
void RequireRegularFile(int descriptor, const std::string& path) {
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return;
    close(descriptor);
    throw Error(ErrorKind::kNotAPackage, "'" + path + "' is not a file.", 0);
}

/// A name beside `path` that nobody uses, so that a rename stays within the file system.
std::string TemporaryBeside(const std::string& path) {
    std::random_device random;
    const std::string ending = "." + std::to_string(random()) + ".new";
    const std::size_t nameAt = path.rfind('/') + 1;
    const bool fits = path.size() - nameAt + ending.size() <= NAME_MAX;
    return (fits ? path : path.substr(0, nameAt) + "kestrum") + ending;
}

int OpenRetrying(const std::string& path, int flags, mode_t mode) {
    int descriptor = -1;
    do {
        descriptor = open(path.c_str(), flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Gives the new file its name.
void Publish(const std::string& temporary, const std::string& path, FileStorage::Collision collision) {
    if (collision == FileStorage::Collision::kReplace) {
        if (rename(temporary.c_str(), path.c_str()) != 0) ThrowSystem("Cannot replace", path, errno);
        return;
    }
    if (renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) return;
    const bool unsupported = errno == EINVAL || errno == ENOSYS;
    if (unsupported && !FileStorage::Exists(path) && rename(temporary.c_str(), path.c_str()) == 0) return;
    const int errorNumber = unsupported ? EEXIST : errno;
    if (errorNumber == EEXIST)
        throw Error(ErrorKind::kLocked, "'" + path + "' is being made by another program.", errorNumber);
    ThrowSystem("Cannot create", path, errorNumber);
}

/// A file that takes the place of another is for the same readers.
void KeepPermissions(const std::string& path, int descriptor) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) fchmod(descriptor, status.st_mode & 07777);
}

void SyncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const int descriptor = OpenRetrying(folder, O_RDONLY | O_DIRECTORY, 0);
    if (descriptor < 0) return;  // a folder we may write but not read: the name is as safe as it gets
    fsync(descriptor);
    close(descriptor);
}

}  // namespace

std::unique_ptr<FileStorage> FileStorage::Open(const std::string& path, Access access) {
    const int flags = access == Access::kRead ? O_RDONLY : O_RDWR;
    const int descriptor = OpenRetrying(path, flags | O_NONBLOCK, 0);
    if (descriptor < 0 && errno == EISDIR) throw Error(ErrorKind::kNotAPackage, "'" + path + "' is a folder.", EISDIR);
    if (descriptor < 0) ThrowSystem("Cannot open", path, errno);
    RequireRegularFile(descriptor, path);
    return std::unique_ptr<FileStorage>(new FileStorage(descriptor, path));
}

std::unique_ptr<FileStorage> FileStorage::Create(const std::string& path, Collision collision,
                                                 const std::function<void(IStorage&)>& fill) {
    const std::string temporary = TemporaryBeside(path);
    const int descriptor = OpenRetrying(temporary, O_RDWR | O_CREAT | O_EXCL, 0666);
    if (descriptor < 0) ThrowSystem("Cannot create", path, errno);
    std::unique_ptr<FileStorage> storage(new FileStorage(descriptor, path));
    try {
        storage->LockExclusive();
        if (collision == Collision::kReplace) KeepPermissions(path, descriptor);
        fill(*storage);
        storage->Sync();
        Publish(temporary, path, collision);
    } catch (const Error&) {
        unlink(temporary.c_str());
        throw;
    }
    SyncFolderOf(path);
    return storage;
}

bool FileStorage::Exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

FileStorage::~FileStorage() {
    close(m_descriptor);
}

LockResult FileStorage::LockExclusive() {
    // A reader that just asks IsLockedByOther holds a shared lock for a moment.
    constexpr int kAttempts = 50;
    constexpr useconds_t kPauseMicroseconds = 10'000;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (flock(m_descriptor, LOCK_EX | LOCK_NB) == 0) return LockResult::kLocked;
        if (errno != EWOULDBLOCK && errno != EINTR) ThrowSystem("Cannot lock", m_path, errno);
        usleep(kPauseMicroseconds);
    }
    return LockResult::kHeldByOther;
}

bool FileStorage::IsLockedByOther() {
    if (flock(m_descriptor, LOCK_SH | LOCK_NB) != 0) return errno == EWOULDBLOCK;
    flock(m_descriptor, LOCK_UN);
    return false;
}

std::uint64_t FileStorage::Size() {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0) ThrowSystem("Cannot read", m_path, errno);
    return static_cast<std::uint64_t>(status.st_size);
}

std::size_t FileStorage::ReadAt(std::uint64_t position, std::span<std::uint8_t> target) {
    std::size_t done = 0;
    while (done < target.size()) {
        const ssize_t count =
            pread(m_descriptor, target.data() + done, target.size() - done, static_cast<off_t>(position + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) ThrowSystem("Cannot read", m_path, errno);
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void FileStorage::WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) {
    std::size_t done = 0;
    while (done < data.size()) {
        const ssize_t count =
            pwrite(m_descriptor, data.data() + done, data.size() - done, static_cast<off_t>(position + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) ThrowSystem("Cannot write", m_path, errno);
        done += static_cast<std::size_t>(count);
    }
}

void FileStorage::Truncate(std::uint64_t size) {
    if (ftruncate(m_descriptor, static_cast<off_t>(size)) != 0) ThrowSystem("Cannot write", m_path, errno);
}

void FileStorage::Sync() {
    if (fdatasync(m_descriptor) != 0) ThrowSystem("Cannot write", m_path, errno);
}

std::size_t MemoryStorage::ReadAt(std::uint64_t position, std::span<std::uint8_t> target) {
    if (position >= m_bytes.size() || target.empty()) return 0;
    const std::size_t count = std::min<std::size_t>(target.size(), m_bytes.size() - position);
    std::memcpy(target.data(), m_bytes.data() + position, count);
    return count;
}

void MemoryStorage::WriteAt(std::uint64_t, std::span<const std::uint8_t>) {
    throw Error(ErrorKind::kNoPermission, "A package in memory cannot be written.", EROFS);
}

void MemoryStorage::Truncate(std::uint64_t) {
    throw Error(ErrorKind::kNoPermission, "A package in memory cannot be written.", EROFS);
}

std::optional<Bytes> ReadExactly(IStorage& storage, std::uint64_t position, std::uint64_t size) {
    const std::uint64_t fileSize = storage.Size();
    if (position > fileSize || size > fileSize - position) return std::nullopt;
    Bytes bytes(size);
    if (storage.ReadAt(position, bytes) != size) return std::nullopt;
    return bytes;
}

std::optional<Bytes> ReadWholeFile(const std::string& path) {
    if (path.empty() || !FileStorage::Exists(path)) return std::nullopt;
    const auto storage = FileStorage::Open(path, FileStorage::Access::kRead);
    return ReadExactly(*storage, 0, storage->Size());
}

void WriteWholeFile(const std::string& path, std::span<const std::uint8_t> data) {
    const int descriptor = OpenRetrying(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (descriptor < 0) ThrowSystem("Cannot create", path, errno);
    std::size_t done = 0;
    while (done < data.size()) {
        const ssize_t count = write(descriptor, data.data() + done, data.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            const int errorNumber = errno;
            close(descriptor);
            ThrowSystem("Cannot write", path, errorNumber);
        }
        done += static_cast<std::size_t>(count);
    }
    if (close(descriptor) != 0) ThrowSystem("Cannot write", path, errno);
}

}  // namespace kestrum::media
