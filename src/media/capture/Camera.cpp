#include "media/capture/Camera.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "media/capture/FileCamera.h"
#include "media/capture/V4l2Camera.h"

namespace kestrum::media {
namespace {

namespace fs = std::filesystem;

/// The folder whose files are the cameras; empty: the system's devices are.
std::string CameraFolder() {
    const char* folder = std::getenv("KESTRUM_CAMERAS");
    return folder ? folder : "";
}

std::vector<CameraInfo> ListFiles(const std::string& folder) {
    std::vector<CameraInfo> cameras;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure)) {
        const fs::path& path = entry->path();
        std::error_code ignored;
        const bool isHidden = path.filename().string().front() == '.';
        if (!isHidden && entry->is_regular_file(ignored)) cameras.push_back({path.string(), path.stem().string()});
    }
    std::sort(cameras.begin(), cameras.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
    return cameras;
}

}  // namespace

std::vector<CameraInfo> ListCameras() {
    const std::string folder = CameraFolder();
    return folder.empty() ? ListV4l2Cameras() : ListFiles(folder);
}

std::unique_ptr<Camera> OpenCamera(const std::string& id, int width, int height) {
    return CameraFolder().empty() ? OpenV4l2Camera(id, width, height) : OpenFileCamera(id);
}

}  // namespace kestrum::media
