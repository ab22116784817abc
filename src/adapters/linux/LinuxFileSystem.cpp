#include "adapters/linux/LinuxFileSystem.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "adapters/linux/DriveKind.h"
#include "adapters/linux/FileBytes.h"
#include "adapters/linux/LocalTime.h"
#include "adapters/linux/PosixError.h"

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;

stdfs::path NativePath(const String& path) {
    return stdfs::path(host::ToUtf8(path));
}

void Check(const std::error_code& code, const String& source, const String& path) {
    if (code) ThrowSystemError(code.value(), source, path);
}

/// Renames, never onto something that exists. False with errno set.
bool RenameToFreeName(const stdfs::path& source, const stdfs::path& target) {
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    struct stat info {};
    if (lstat(target.c_str(), &info) == 0) {
        errno = EEXIST;
        return false;
    }
    return rename(source.c_str(), target.c_str()) == 0;
}

/// The path itself or its nearest ancestor that exists.
stdfs::path ExistingPart(stdfs::path path) {
    std::error_code ignored;
    path = stdfs::absolute(path, ignored);
    while (!stdfs::exists(path, ignored) && path.has_parent_path() && path != path.parent_path()) {
        path = path.parent_path();
    }
    return path;
}

void MakeWritable(const stdfs::path& path, std::error_code& failed) {
    if (access(path.c_str(), W_OK) == 0) return;
    stdfs::permissions(path, stdfs::perms::owner_write, stdfs::perm_options::add, failed);
}

/// Opens every folder below `folder` for changes; links are left alone.
void UnlockFolders(const stdfs::path& folder) {
    std::error_code ignored;
    stdfs::permissions(folder, stdfs::perms::owner_all, stdfs::perm_options::add, ignored);
    for (stdfs::directory_iterator entry(folder, ignored), end; !ignored && entry != end; entry.increment(ignored)) {
        std::error_code unknown;
        if (entry->is_directory(unknown) && !entry->is_symlink(unknown)) UnlockFolders(entry->path());
    }
}

}  // namespace

bool LinuxFileSystem::FileExists(const String& path) {
    std::error_code ignored;
    const auto status = stdfs::status(NativePath(path), ignored);
    return stdfs::exists(status) && !stdfs::is_directory(status);
}

bool LinuxFileSystem::FolderExists(const String& path) {
    std::error_code ignored;
    return stdfs::is_directory(NativePath(path), ignored);
}

std::int64_t LinuxFileSystem::FileSize(const String& path) {
    std::error_code failed;
    const auto size = stdfs::file_size(NativePath(path), failed);
    return failed ? 0 : static_cast<std::int64_t>(size);
}

host::DateTime LinuxFileSystem::FileTime(const String& path) {
    struct stat info {};
    if (stat(host::ToUtf8(path).c_str(), &info) != 0) ThrowSystemError(errno, u"FileTime", path);
    return LocalTime(info.st_mtim);
}

std::string LinuxFileSystem::ReadFile(const String& path) {
    return ReadAll(NativePath(path));
}

void LinuxFileSystem::WriteFile(const String& path, const std::string& bytes) {
    WriteAll(NativePath(path), bytes, false);
}

void LinuxFileSystem::AppendFile(const String& path, const std::string& bytes) {
    WriteAll(NativePath(path), bytes, true);
}

void LinuxFileSystem::CopyFile(const String& source, const String& target) {
    if (FolderExists(source)) ThrowSystemError(EISDIR, u"CopyFile", source);
    CopyBytes(NativePath(source), NativePath(target));
}

void LinuxFileSystem::MoveFile(const String& source, const String& target) {
    if (RenameToFreeName(NativePath(source), NativePath(target))) return;
    if (errno != EXDEV) ThrowSystemError(errno, u"MoveFile", errno == EEXIST ? target : source);
    // Copied under a passing name first, so that the target's name never stands for half a file.
    const String part = target + u"." + TemporaryName();
    CopyFile(source, part);
    if (!RenameToFreeName(NativePath(part), NativePath(target))) {
        const int reason = errno;
        unlink(host::ToUtf8(part).c_str());
        ThrowSystemError(reason, u"MoveFile", target);
    }
    DeleteFile(source);
}

void LinuxFileSystem::DeleteFile(const String& path) {
    if (unlink(host::ToUtf8(path).c_str()) != 0) ThrowSystemError(errno, u"DeleteFile", path);
}

void LinuxFileSystem::CreateFolder(const String& path) {
    if (mkdir(host::ToUtf8(path).c_str(), 0777) != 0) ThrowSystemError(errno, u"CreateFolder", path);
}

void LinuxFileSystem::CopyFolder(const String& source, const String& target) {
    if (!FolderExists(target)) CreateFolder(target);
    for (const String& name : ListFolder(source)) {
        const String from = source + u"/" + name;
        const String to = target + u"/" + name;
        if (FolderExists(from)) {
            CopyFolder(from, to);
        } else {
            CopyFile(from, to);
        }
    }
}

void LinuxFileSystem::DeleteFolder(const String& path) {
    const stdfs::path folder = NativePath(path);
    std::error_code failed;
    if (stdfs::is_symlink(folder, failed) || !stdfs::is_directory(folder, failed)) {
        ThrowSystemError(ENOTDIR, u"DeleteFolder", path);
    }
    stdfs::remove_all(folder, failed);
    if (!failed) return;
    UnlockFolders(folder);
    stdfs::remove_all(folder, failed);
    Check(failed, u"DeleteFolder", path);
}

std::vector<String> LinuxFileSystem::ListFolder(const String& path) {
    std::error_code failed;
    std::vector<String> names;
    for (stdfs::directory_iterator entry(NativePath(path), failed), end; !failed && entry != end;
         entry.increment(failed)) {
        names.push_back(host::FromUtf8(entry->path().filename().native()));
    }
    Check(failed, u"ListFolder", path);
    std::sort(names.begin(), names.end());
    return names;
}

void LinuxFileSystem::ClearReadOnly(const String& path) {
    std::error_code failed;
    MakeWritable(NativePath(path), failed);
    Check(failed, u"ClearReadOnly", path);
}

void LinuxFileSystem::ClearReadOnlyTree(const String& folder) {
    std::error_code failed;
    for (stdfs::recursive_directory_iterator entry(NativePath(folder), failed), end; !failed && entry != end;
         entry.increment(failed)) {
        std::error_code skipped;
        if (!entry->is_symlink(skipped) && entry->is_regular_file(skipped)) MakeWritable(entry->path(), skipped);
        if (skipped) failed = skipped;
    }
    Check(failed, u"ClearReadOnlyTree", folder);
}

std::int64_t LinuxFileSystem::FreeBytes(const String& path) {
    struct statvfs info {};
    if (statvfs(ExistingPart(NativePath(path)).c_str(), &info) != 0) return 0;
    return static_cast<std::int64_t>(info.f_bavail) * static_cast<std::int64_t>(info.f_frsize);
}

host::DriveType LinuxFileSystem::DriveType(const String& path) {
    if (IsNetworkPath(path)) return host::DriveType::Network;
    return DriveKindOf(ExistingPart(NativePath(path)));
}

bool LinuxFileSystem::IsNetworkPath(const String& path) {
    return path.starts_with(u"//") || path.starts_with(u"\\\\");
}

String LinuxFileSystem::TemporaryName() {
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    String name = u"rad";
    for (int i = 0; i < 8; ++i) name += kDigits[m_random() % kDigits.size()];
    return name + u".tmp";
}

void LinuxFileSystem::SetCurrentFolder(const String& path) {
    if (chdir(host::ToUtf8(path).c_str()) != 0) ThrowSystemError(errno, u"SetCurrentFolder", path);
}

}  // namespace kestrum::platform
