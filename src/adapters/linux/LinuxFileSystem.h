// The file system over POSIX. Paths are UTF-8 on disk; a name on disk that is not UTF-8 can be listed and deleted with
// its folder, but not named.
#pragma once

#include <random>

#include "host/IFileSystem.h"

namespace kestrum::platform {

class LinuxFileSystem : public host::IFileSystem {
  public:
    LinuxFileSystem() : m_random(std::random_device{}()) {}

    char16_t Separator() override { return u'/'; }
    bool FileExists(const String& path) override;
    bool FolderExists(const String& path) override;
    std::int64_t FileSize(const String& path) override;
    host::DateTime FileTime(const String& path) override;
    std::string ReadFile(const String& path) override;
    void WriteFile(const String& path, const std::string& bytes) override;
    void AppendFile(const String& path, const std::string& bytes) override;
    void CopyFile(const String& source, const String& target) override;
    void MoveFile(const String& source, const String& target) override;
    void DeleteFile(const String& path) override;
    void CreateFolder(const String& path) override;
    void CopyFolder(const String& source, const String& target) override;
    void DeleteFolder(const String& path) override;
    std::vector<String> ListFolder(const String& path) override;
    void ClearReadOnly(const String& path) override;
    void ClearReadOnlyTree(const String& folder) override;
    std::int64_t FreeBytes(const String& path) override;
    host::DriveType DriveType(const String& path) override;
    bool IsNetworkPath(const String& path) override;
    String TemporaryName() override;
    void SetCurrentFolder(const String& path) override;

  private:
    std::mt19937 m_random;
};

}  // namespace kestrum::platform
