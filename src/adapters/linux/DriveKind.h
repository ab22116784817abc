// Tells what kind of drive a folder lives on: from the kernel's mount table for file systems, from sysfs for devices.
#pragma once

#include <filesystem>
#include <string_view>

#include "host/IFileSystem.h"

namespace kestrum::platform {

/// `path` must exist. What cannot be told is a fixed drive.
host::DriveType DriveKindOf(const std::filesystem::path& path);

/// The kind that a file system's type implies ("nfs4", "tmpfs", "iso9660" ...); Unknown if its device decides.
host::DriveType KindOfFileSystem(std::string_view type);

}  // namespace kestrum::platform
