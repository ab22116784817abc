// A file system in memory, with the paths of Linux or of Windows (PathRules.h): read-only files, folders without write
// permission, drives with a type and a limited space, network paths. Faults: "fs." + the method's name; a write that
// fails leaves half of its bytes, as a real one may.
#pragma once

#include <map>

#include "adapters/sim/EventLoop.h"
#include "adapters/sim/Faults.h"
#include "adapters/sim/PathRules.h"
#include "host/IFileSystem.h"

namespace kestrum::sim {

class FileSystem : public host::IFileSystem {
  public:
    FileSystem(Faults& faults, EventLoop& loop, PathStyle style = PathStyle::Linux);

    char16_t Separator() override { return m_rules.Separator(); }
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
    bool IsNetworkPath(const String& path) override { return m_rules.IsNetworkPath(path); }
    String TemporaryName() override;
    void SetCurrentFolder(const String& path) override;

    // --- for tests and the other fakes: no faults, no limits -------------------------------------------------------

    /// Makes or replaces a file, its folders too.
    void Put(const String& path, const std::string& bytes);
    /// Makes a folder with all its parents.
    void PutFolder(const String& path);
    /// Deletes a file or a folder with its content; harmless if there is none.
    void Remove(const String& path);
    /// Content of a file, empty if there is none.
    std::string Bytes(const String& path) const;
    /// A file whose reported size is larger than its content (for limits in gigabytes); it stays so when rewritten.
    void SetReportedSize(const String& path, std::int64_t bytes);
    void SetReadOnly(const String& path, bool readOnly);
    bool IsReadOnly(const String& path) const;
    /// Nothing can be made, changed or deleted directly in this folder.
    void SetUnwritable(const String& folder, bool unwritable);
    /// Everything below `root` lives on a drive of its own.
    void AddDrive(const String& root, host::DriveType type, std::int64_t freeBytes);
    /// Every file and folder, sorted.
    std::vector<String> All() const;
    const String& CurrentFolder() const { return m_current; }
    const PathRules& Rules() const { return m_rules; }

  private:
    struct Node {
        bool folder = false;
        bool readOnly = false;
        bool unwritable = false;
        std::string bytes;
        std::int64_t reportedExtra = 0;
        host::DateTime time;
    };
    struct Drive {
        host::DriveType type;
        std::int64_t freeBytes;
    };

    String Normal(const String& path) const { return m_rules.Normal(path, m_current); }
    const Node* Find(const String& path) const;
    Node& NeedFile(const String& path, StringView call);
    void NeedWritableParent(const String& normal, StringView call) const;
    Drive& DriveOf(const String& normal);
    void Store(const String& path, const std::string& bytes, StringView call);
    void EraseFile(const String& normal);

    Faults& m_faults;
    EventLoop& m_loop;
    PathRules m_rules;
    std::map<String, Node, PathRules::Less> m_nodes{m_rules.Order()};
    std::map<String, Drive, PathRules::Less> m_drives{m_rules.Order()};
    String m_current = m_rules.Root();
    int m_temporaries = 0;
};

}  // namespace kestrum::sim
