#include "adapters/linux/DriveKind.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <string>

namespace kestrum::platform {
namespace {

namespace stdfs = std::filesystem;
using host::DriveType;

std::string DeviceName(dev_t device) {
    return std::to_string(major(device)) + ":" + std::to_string(minor(device));
}

/// Type of the file system with the device number `device`, empty if the mount table has none.
std::string FileSystemType(const std::string& device) {
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string id, parent, number, word;
        fields >> id >> parent >> number;
        if (number != device) continue;
        while (fields >> word && word != "-") {
        }
        fields >> word;
        return word;
    }
    return {};
}

/// A disk says so itself, or hangs on the USB bus. A partition asks its disk, one folder up.
bool IsRemovableDevice(const std::string& device) {
    std::error_code failed;
    const stdfs::path node = stdfs::canonical("/sys/dev/block/" + device, failed);
    if (failed) return false;
    if (node.native().find("/usb") != std::string::npos) return true;
    for (const auto& folder : {node, node.parent_path()}) {
        char flag = '0';
        if (std::ifstream(folder / "removable") >> flag) return flag == '1';
    }
    return false;
}

}  // namespace

DriveType KindOfFileSystem(std::string_view type) {
    static constexpr std::array<std::string_view, 16> kNetwork = {
        "nfs",  "nfs4",  "cifs",      "smb3",       "smbfs",           "afs",        "ceph",       "9p", "ncpfs",
        "coda", "davfs", "glusterfs", "fuse.sshfs", "fuse.gvfsd-fuse", "fuse.davfs", "fuse.rclone"};
    if (std::find(kNetwork.begin(), kNetwork.end(), type) != kNetwork.end()) return DriveType::Network;
    if (type == "tmpfs" || type == "ramfs") return DriveType::RamDisk;
    if (type == "iso9660") return DriveType::Cd;
    return DriveType::Unknown;
}

DriveType DriveKindOf(const stdfs::path& path) {
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) return DriveType::NoRoot;
    const std::string device = DeviceName(info.st_dev);
    const DriveType kind = KindOfFileSystem(FileSystemType(device));
    if (kind != DriveType::Unknown) return kind;
    return IsRemovableDevice(device) ? DriveType::Removable : DriveType::Fixed;
}

}  // namespace kestrum::platform
