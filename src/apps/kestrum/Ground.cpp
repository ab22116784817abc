#include "apps/kestrum/Ground.h"

#include <filesystem>

namespace kestrum::app {

String InstallFolder() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return host::FromUtf8(program.parent_path().string());
}

String FullPath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path full = std::filesystem::absolute(path, error);
    return host::FromUtf8(error ? path : full.lexically_normal().string());
}

}  // namespace kestrum::app
