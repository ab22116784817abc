// The file system as the core sees it. Every write of the core passes through this port, so that a test can fail the
// n-th one. Paths are host paths with the platform's separator. A failure is host::Error with the system's reason as a
// sentence; questions (Exists, Size ...) never fail, they answer "no" or 0.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/IEventLoop.h"
#include "host/String.h"

namespace kestrum::host {

/// Where a folder lives, in the platform's drive numbering.
enum class DriveType : std::int32_t {
    Unknown = 0,
    NoRoot = 1,
    Removable = 2,
    Fixed = 3,
    Network = 4,
    Cd = 5,
    RamDisk = 6
};

class IFileSystem {
  public:
    virtual ~IFileSystem() = default;

    /// The platform's separator, u'/' or u'\\'.
    virtual char16_t Separator() = 0;

    virtual bool FileExists(const String& path) = 0;
    virtual bool FolderExists(const String& path) = 0;
    /// Size in bytes; 0 if there is no such file.
    virtual std::int64_t FileSize(const String& path) = 0;
    /// Time of the last change; fails if there is no such file.
    virtual DateTime FileTime(const String& path) = 0;

    /// The whole file.
    virtual std::string ReadFile(const String& path) = 0;
    /// Makes or replaces the file. On return the bytes are with the operating system; on failure a part may be there.
    virtual void WriteFile(const String& path, const std::string& bytes) = 0;
    /// Adds to the file's end, making it if missing.
    virtual void AppendFile(const String& path, const std::string& bytes) = 0;

    /// Copies bytes, replacing the target.
    virtual void CopyFile(const String& source, const String& target) = 0;
    /// Renames; fails if the target exists. Across file systems it copies, then deletes.
    virtual void MoveFile(const String& source, const String& target) = 0;
    /// Deletes one file, a read-only one too; fails if it is missing.
    virtual void DeleteFile(const String& path) = 0;

    /// Makes one folder; fails if the parent is missing or the name is taken.
    virtual void CreateFolder(const String& path) = 0;
    /// Copies `source`'s content into `target`, made if missing, replacing files of the same name.
    virtual void CopyFolder(const String& source, const String& target) = 0;
    /// Deletes the folder with all its content, read-only files too. Never follows a link out of the folder.
    virtual void DeleteFolder(const String& path) = 0;
    /// Names (without path) of the entries of a folder, sorted by code unit; folders included.
    virtual std::vector<String> ListFolder(const String& path) = 0;

    /// Makes the file writable if it is read-only.
    virtual void ClearReadOnly(const String& path) = 0;
    /// Makes every file below the folder writable.
    virtual void ClearReadOnlyTree(const String& folder) = 0;

    /// Bytes available to the user where `path` (existing or not) would be written.
    virtual std::int64_t FreeBytes(const String& path) = 0;
    virtual host::DriveType DriveType(const String& path) = 0;
    /// True for a path on a network share by its form (two separators in front).
    virtual bool IsNetworkPath(const String& path) = 0;
    /// A file name that is very unlikely to exist, such as "rad3F2A1.tmp".
    virtual String TemporaryName() = 0;
    /// Changes the process's current folder.
    virtual void SetCurrentFolder(const String& path) = 0;
};

}  // namespace kestrum::host
