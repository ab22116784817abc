#include "adapters/media/MediaOptimize.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include "adapters/media/ProjectIndex.h"

namespace kestrum::adapters {

namespace {

/// The largest movie in bytes; a player that counts positions in 32 bits still plays it.
constexpr const char* kSizeLimit = "1932735283";
/// The smallest webcam picture that a package can hold.
constexpr std::int32_t kLeastWebcamWidth = 160;
constexpr std::int32_t kLeastWebcamHeight = 120;

std::int32_t DownToFour(std::int32_t value) {
    return value / 4 * 4;
}

std::string Joined(const String& folder, const char* name) {
    return host::ToUtf8(folder) + "/" + name;
}

/// Writes the open project's index where the worker reads it; the option that names the file, nothing if there is no
/// project (the worker then takes the package's chapters).
std::vector<std::string> IndexArguments(const String& workFolder) {
    const auto index = ReadProjectIndex(Joined(workFolder, "project.ksp"));
    if (!index) return {};
    const std::string file = Joined(workFolder, "convert.index");
    std::ofstream stream(file, std::ios::binary);
    stream << *index;
    stream.close();
    if (!stream) return {};
    return {"--index", file};
}

void Append(std::vector<std::string>& list, const std::vector<std::string>& more) {
    list.insert(list.end(), more.begin(), more.end());
}

}  // namespace

MediaOptimize::MediaOptimize(String worker, host::IKsLib& packages)
    : m_worker(host::ToUtf8(worker)), m_packages(packages) {}

std::int32_t MediaOptimize::GetVideoMinDim(const String& package, std::int32_t& width, std::int32_t& height) {
    if (m_packages.GetVideoAttribute(package) <= 0) return 0;
    width = kLeastWebcamWidth;
    height = kLeastWebcamHeight;
    return 1;
}

void MediaOptimize::SetVideoAreaInMp4(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t left) {
    m_area = {width, height, top, left};
}

void MediaOptimize::SetCustomBitrate(std::int32_t kilobits) {
    m_bitrate = kilobits;
}

void MediaOptimize::KeepPackageSize(const String& package, std::int32_t& width, std::int32_t& height) {
    std::int32_t packageWidth = 0;
    std::int32_t packageHeight = 0;
    if (m_packages.GetFileHeaderDim(package, packageWidth, packageHeight) == 0) return;
    const bool same = width == DownToFour(packageWidth) && height == DownToFour(packageHeight);
    const bool none = width <= 0 || height <= 0;
    if (!same && !none) {
        // Pictures in 4:2:0 have even sides; the caller writes the size of the movie into the page.
        width -= width % 2;
        height -= height % 2;
        return;
    }
    width = packageWidth;
    height = packageHeight;
}

/// Where the webcam goes in a movie that became `width` x `height` instead of `asked`: what touched an edge still does.
MediaOptimize::Area MediaOptimize::AreaIn(const Size& asked, std::int32_t width, std::int32_t height) const {
    Area area = m_area;
    if (area.left + area.width == asked.width) area.left = width - area.width;
    if (area.top + area.height == asked.height) area.top = height - area.height;
    return area;
}

std::vector<std::string> MediaOptimize::SettingArguments(const Area& area) const {
    std::vector<std::string> arguments = {"--limit", kSizeLimit};
    if (m_bitrate > 0) Append(arguments, {"--bitrate", std::to_string(m_bitrate)});
    if (area.width > 0 && area.height > 0)
        Append(arguments, {"--camera", std::to_string(area.width) + "x" + std::to_string(area.height) + "," +
                                           std::to_string(area.top) + "," + std::to_string(area.left)});
    return arguments;
}

std::int32_t MediaOptimize::ks2mp4(const String& package, const String& workFolder, const String& outputFolder,
                                   const String& /*programFolder*/, std::int32_t& width, std::int32_t& height,
                                   std::int32_t& /*mode*/, std::int32_t /*fixedOne*/, std::int32_t audioBitrate,
                                   std::int32_t /*fixedZero*/) {
    m_job.reset();
    const Size asked{width, height};
    KeepPackageSize(package, width, height);
    std::vector<std::string> arguments = {"convert-mp4", host::ToUtf8(package), Joined(outputFolder, "media.mp4")};
    if (width > 0 && height > 0) Append(arguments, {"--size", std::to_string(width) + "x" + std::to_string(height)});
    if (audioBitrate > 0) Append(arguments, {"--audio-bitrate", std::to_string(audioBitrate)});
    Append(arguments, SettingArguments(AreaIn(asked, width, height)));
    Append(arguments, IndexArguments(workFolder));
    try {
        m_job = std::make_unique<ConversionProcess>(m_worker, arguments);
    } catch (const std::runtime_error&) {
        return 0;
    }
    return 1;
}

std::int32_t MediaOptimize::getKs2mp4Status() {
    return m_job ? m_job->Status() : host::job_status::kFailed;
}

void MediaOptimize::stopKs2mp4() {
    if (m_job) m_job->Stop();
}

}  // namespace kestrum::adapters
