#include "adapters/sim/FileSystem.h"

#include <algorithm>

namespace kestrum::sim {

namespace {

using host::Error;
using host::ErrorNumber;

constexpr std::int64_t kDefaultFreeBytes = 100LL << 30;

[[noreturn]] void Raise(ErrorNumber number, StringView call, const String& text) {
    throw Error(number, String(call), text);
}

}  // namespace

FileSystem::FileSystem(Faults& faults, EventLoop& loop, PathStyle style)
    : m_faults(faults), m_loop(loop), m_rules(style) {
    m_nodes[m_rules.Root()].folder = true;
    m_drives[m_rules.Root()] = Drive{host::DriveType::Fixed, kDefaultFreeBytes};
}

const FileSystem::Node* FileSystem::Find(const String& path) const {
    auto found = m_nodes.find(Normal(path));
    return found == m_nodes.end() ? nullptr : &found->second;
}

FileSystem::Node& FileSystem::NeedFile(const String& path, StringView call) {
    auto found = m_nodes.find(Normal(path));
    if (found == m_nodes.end() || found->second.folder) Raise(ErrorNumber::FileNotFound, call, u"File not found");
    return found->second;
}

void FileSystem::NeedWritableParent(const String& normal, StringView call) const {
    const Node* parent = Find(m_rules.ParentOf(normal));
    const bool possible = m_rules.IsName(m_rules.NameOf(normal)) && !m_rules.IsRoot(normal);
    if (!possible || !parent || !parent->folder) Raise(ErrorNumber::PathNotFound, call, u"Path not found");
    if (parent->unwritable) Raise(ErrorNumber::PermissionDenied, call, u"Permission denied");
}

FileSystem::Drive& FileSystem::DriveOf(const String& normal) {
    String best;
    for (const auto& [root, drive] : m_drives) {
        if ((m_rules.Same(normal, root) || m_rules.IsBelow(normal, root)) && root.size() > best.size()) best = root;
    }
    return m_drives[best.empty() ? m_rules.Root() : best];
}

bool FileSystem::FileExists(const String& path) {
    const Node* node = Find(path);
    return node && !node->folder;
}

bool FileSystem::FolderExists(const String& path) {
    const Node* node = Find(path);
    return node && node->folder;
}

std::int64_t FileSystem::FileSize(const String& path) {
    const Node* node = Find(path);
    if (!node || node->folder) return 0;
    return static_cast<std::int64_t>(node->bytes.size()) + node->reportedExtra;
}

host::DateTime FileSystem::FileTime(const String& path) {
    m_faults.Check(u"fs.FileTime");
    return NeedFile(path, u"fs.FileTime").time;
}

std::string FileSystem::ReadFile(const String& path) {
    m_faults.Check(u"fs.ReadFile");
    return NeedFile(path, u"fs.ReadFile").bytes;
}

void FileSystem::Store(const String& path, const std::string& bytes, StringView call) {
    String normal = Normal(path);
    auto found = m_nodes.find(normal);
    std::int64_t old = 0;
    if (found != m_nodes.end()) {
        if (found->second.folder) Raise(ErrorNumber::PermissionDenied, call, u"It is a folder");
        if (found->second.readOnly) Raise(ErrorNumber::PermissionDenied, call, u"Permission denied");
        old = static_cast<std::int64_t>(found->second.bytes.size());
    } else {
        NeedWritableParent(normal, call);
    }
    Drive& drive = DriveOf(normal);
    std::int64_t growth = static_cast<std::int64_t>(bytes.size()) - old;
    if (growth > drive.freeBytes) Raise(ErrorNumber::DiskFull, call, u"Disk full");
    drive.freeBytes -= growth;
    Node& node = m_nodes[normal];
    node.bytes = bytes;
    node.time = m_loop.Now();
}

void FileSystem::WriteFile(const String& path, const std::string& bytes) {
    if (m_faults.Fails(u"fs.WriteFile")) {
        Store(path, bytes.substr(0, bytes.size() / 2), u"fs.WriteFile");
        Raise(ErrorNumber::DiskFull, u"fs.WriteFile", u"Injected failure of fs.WriteFile");
    }
    Store(path, bytes, u"fs.WriteFile");
}

void FileSystem::AppendFile(const String& path, const std::string& bytes) {
    m_faults.Check(u"fs.AppendFile");
    Store(path, Bytes(path) + bytes, u"fs.AppendFile");
}

void FileSystem::CopyFile(const String& source, const String& target) {
    std::string bytes = NeedFile(source, u"fs.CopyFile").bytes;
    if (m_faults.Fails(u"fs.CopyFile")) {
        Store(target, bytes.substr(0, bytes.size() / 2), u"fs.CopyFile");
        Raise(ErrorNumber::DiskFull, u"fs.CopyFile", u"Injected failure of fs.CopyFile");
    }
    std::int64_t extra = NeedFile(source, u"fs.CopyFile").reportedExtra;
    Store(target, bytes, u"fs.CopyFile");
    NeedFile(target, u"fs.CopyFile").reportedExtra = extra;
}

void FileSystem::MoveFile(const String& source, const String& target) {
    m_faults.Check(u"fs.MoveFile");
    Node& node = NeedFile(source, u"fs.MoveFile");
    if (Find(target)) Raise(ErrorNumber::FileAlreadyOpen, u"fs.MoveFile", u"File already exists");
    NeedWritableParent(Normal(source), u"fs.MoveFile");
    NeedWritableParent(Normal(target), u"fs.MoveFile");
    Node moved = std::move(node);
    m_nodes.erase(Normal(source));
    m_nodes[Normal(target)] = std::move(moved);
}

void FileSystem::EraseFile(const String& normal) {
    DriveOf(normal).freeBytes += static_cast<std::int64_t>(m_nodes[normal].bytes.size());
    m_nodes.erase(normal);
}

void FileSystem::DeleteFile(const String& path) {
    m_faults.Check(u"fs.DeleteFile");
    NeedFile(path, u"fs.DeleteFile");
    NeedWritableParent(Normal(path), u"fs.DeleteFile");
    EraseFile(Normal(path));
}

void FileSystem::CreateFolder(const String& path) {
    m_faults.Check(u"fs.CreateFolder");
    String normal = Normal(path);
    if (normal.empty()) Raise(ErrorNumber::PathNotFound, u"fs.CreateFolder", u"Path not found");
    if (Find(normal)) Raise(ErrorNumber::FileAlreadyOpen, u"fs.CreateFolder", u"File already exists");
    NeedWritableParent(normal, u"fs.CreateFolder");
    Node& node = m_nodes[normal];
    node.folder = true;
    node.time = m_loop.Now();
}

void FileSystem::CopyFolder(const String& source, const String& target) {
    m_faults.Check(u"fs.CopyFolder");
    if (!FolderExists(source)) Raise(ErrorNumber::PathNotFound, u"fs.CopyFolder", u"Path not found");
    if (!FolderExists(target)) {
        NeedWritableParent(Normal(target), u"fs.CopyFolder");
        m_nodes[Normal(target)].folder = true;
    }
    for (const String& name : ListFolder(source)) {
        String from = Normal(source) + Separator() + name, to = Normal(target) + Separator() + name;
        if (FolderExists(from)) {
            CopyFolder(from, to);
        } else {
            Store(to, Bytes(from), u"fs.CopyFolder");
        }
    }
}

void FileSystem::DeleteFolder(const String& path) {
    m_faults.Check(u"fs.DeleteFolder");
    if (!FolderExists(path)) Raise(ErrorNumber::PathNotFound, u"fs.DeleteFolder", u"Path not found");
    NeedWritableParent(Normal(path), u"fs.DeleteFolder");
    Remove(path);
}

std::vector<String> FileSystem::ListFolder(const String& path) {
    m_faults.Check(u"fs.ListFolder");
    String folder = Normal(path);
    if (!FolderExists(folder)) Raise(ErrorNumber::PathNotFound, u"fs.ListFolder", u"Path not found");
    std::vector<String> names;
    for (const auto& [node, value] : m_nodes) {
        const bool direct = m_rules.IsBelow(node, folder) && m_rules.Same(m_rules.ParentOf(node), folder);
        if (direct) names.push_back(m_rules.NameOf(node));
    }
    std::sort(names.begin(), names.end());
    return names;
}

void FileSystem::ClearReadOnly(const String& path) {
    m_faults.Check(u"fs.ClearReadOnly");
    NeedFile(path, u"fs.ClearReadOnly").readOnly = false;
}

void FileSystem::ClearReadOnlyTree(const String& folder) {
    m_faults.Check(u"fs.ClearReadOnlyTree");
    if (!FolderExists(folder)) Raise(ErrorNumber::PathNotFound, u"fs.ClearReadOnlyTree", u"Path not found");
    for (auto& [node, value] : m_nodes) {
        if (m_rules.IsBelow(node, Normal(folder))) value.readOnly = false;
    }
}

std::int64_t FileSystem::FreeBytes(const String& path) {
    return DriveOf(Normal(path)).freeBytes;
}

host::DriveType FileSystem::DriveType(const String& path) {
    return DriveOf(Normal(path)).type;
}

String FileSystem::TemporaryName() {
    return u"rad" + host::FromUtf8(std::to_string(10000 + m_temporaries++)) + u".tmp";
}

void FileSystem::SetCurrentFolder(const String& path) {
    m_faults.Check(u"fs.SetCurrentFolder");
    if (!FolderExists(path)) Raise(ErrorNumber::PathNotFound, u"fs.SetCurrentFolder", u"Path not found");
    m_current = Normal(path);
}

void FileSystem::PutFolder(const String& path) {
    String normal = Normal(path);
    const String parent = m_rules.ParentOf(normal);
    if (parent != normal && !Find(parent)) PutFolder(parent);
    m_nodes[normal].folder = true;
}

void FileSystem::Put(const String& path, const std::string& bytes) {
    PutFolder(m_rules.ParentOf(Normal(path)));
    Node& node = m_nodes[Normal(path)];
    node.folder = false;
    node.bytes = bytes;
    node.time = m_loop.Now();
}

void FileSystem::Remove(const String& path) {
    String normal = Normal(path);
    for (auto node = m_nodes.begin(); node != m_nodes.end();) {
        bool gone = node->first == normal || m_rules.IsBelow(node->first, normal);
        if (gone) DriveOf(node->first).freeBytes += static_cast<std::int64_t>(node->second.bytes.size());
        node = gone ? m_nodes.erase(node) : std::next(node);
    }
}

std::string FileSystem::Bytes(const String& path) const {
    const Node* node = Find(path);
    return node ? node->bytes : std::string();
}

void FileSystem::SetReportedSize(const String& path, std::int64_t bytes) {
    Node& node = NeedFile(path, u"SetReportedSize");
    node.reportedExtra = bytes - static_cast<std::int64_t>(node.bytes.size());
}

void FileSystem::SetReadOnly(const String& path, bool readOnly) {
    NeedFile(path, u"SetReadOnly").readOnly = readOnly;
}

bool FileSystem::IsReadOnly(const String& path) const {
    const Node* node = Find(path);
    return node && node->readOnly;
}

void FileSystem::SetUnwritable(const String& folder, bool unwritable) {
    PutFolder(folder);
    m_nodes[Normal(folder)].unwritable = unwritable;
}

void FileSystem::AddDrive(const String& root, host::DriveType type, std::int64_t freeBytes) {
    PutFolder(root);
    m_drives[Normal(root)] = Drive{type, freeBytes};
}

std::vector<String> FileSystem::All() const {
    std::vector<String> paths;
    for (const auto& [path, node] : m_nodes) paths.push_back(path);
    return paths;
}

}  // namespace kestrum::sim
