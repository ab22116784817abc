// What the calls on a big package cost: two hours, 1.8 GB. Peers are the programs that do the same to any Matroska
// file: mkvpropedit, ffprobe, ffmpeg, mkvmerge.
//   package_bench [FOLDER]     needs 6 GB there; the temp folder if not said otherwise
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "media/capture/VideoEncoder.h"
#include "media/package/Package.h"
#include "media/package/PackageWriter.h"

namespace {

namespace fs = std::filesystem;
using namespace kestrum::media;

constexpr int kSeconds = 7200;
constexpr std::size_t kPictureBytes = 250'000;

double Milliseconds(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double Median(int runs, const std::function<void()>& work) {
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) times.push_back(Milliseconds(work));
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs / 2)];
}

void Run(const std::string& command) {
    if (std::system(("{ " + command + "; } >/dev/null 2>&1").c_str()) != 0)
        std::fprintf(stderr, "failed: %s\n", command.c_str());
}

Bytes Project(std::size_t entries) {
    std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?><project><index>";
    for (std::size_t i = 0; i < entries; ++i)
        text += "<item pos=\"" + std::to_string(i * 1000) + "\">A slide's title</item>";
    text += "</index></project>";
    return {text.begin(), text.end()};
}

/// Writes a key frame a second from `from` on.
void Write(PackageWriter& writer, std::int64_t fromMs, int seconds, std::mt19937& random) {
    Bytes picture(kPictureBytes);
    for (auto& byte : picture) byte = static_cast<std::uint8_t>(random());
    for (int second = 0; second < seconds; ++second) {
        picture[static_cast<std::size_t>(random()) % picture.size()] ^= 1;
        writer.WriteVideo(fromMs + second * 1000LL, true, picture);
        writer.Flush();
    }
}

void Make(const std::string& path) {
    std::mt19937 random(1);
    WriteStored(path, {{kProjectFileName, Project(200)}});
    const auto writer = PackageWriter::Open(path);
    const Bytes avcC = VideoEncoder({1920, 1080, 10, false}).AvcC();
    writer->SetTracks({{1920, 1080, avcC}, std::nullopt});
    Write(*writer, 0, kSeconds, random);
    writer->Close(kSeconds * 1000);
}

void Tell(const char* what, double own, double peer, const char* peerName) {
    std::printf("%-42s %9.2f ms %11.1f ms %8.0f  %s\n", what, own, peer, peer / own, peerName);
    std::fflush(stdout);
}

void Measure(const fs::path& folder) {
    const std::string path = folder / "lecture.ktr", other = folder / "other.mkv", copy = folder / "copy.mkv";
    Make(path);
    fs::copy_file(path, other);
    sync();  // else what was just written would be waited for below
    std::printf("a package of %.2f GB, two hours\n", static_cast<double>(fs::file_size(path)) / 1e9);
    const std::string project = folder / "project.ksp";
    const Bytes content = Project(200);
    std::ofstream(project, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    Tell("stored files replaced, synced",
         Median(15,
                [&] {
                    WriteStored(path, {{kProjectFileName, Project(200)}});
                }),
         Median(3,
                [&] {
                    Run("mkvpropedit " + other +
                        " --attachment-name project.ksp --replace-attachment name:project.ksp:" + project +
                        " && sync " + other);
                }),
         "mkvpropedit and sync");
    Tell("length and size of the pictures", Median(50, [&] { LengthMs(path), FrameSize(path); }),
         Median(5, [&] { Run("ffprobe -v error -show_entries format=duration:stream=width,height " + other); }),
         "ffprobe");
    Tell(
        "list of key frames", Median(50, [&] { KeyFrames(path); }),
        Median(2,
               [&] { Run("ffprobe -v error -select_streams v -show_entries packet=pts_time,flags -of csv " + other); }),
        "ffprobe, packets");
    Tell("whole verification", Median(3, [&] { WholeVerify(path, nullptr, nullptr); }),
         Median(3, [&] { Run("ffmpeg -v error -i " + other + " -c copy -f null -"); }), "ffmpeg, demultiplexing alone");
    const double append = Milliseconds([&] {
        std::mt19937 random(2);
        const auto writer = PackageWriter::Open(path);
        Write(*writer, writer->StartMs(), 60, random);
        writer->Close(writer->StartMs() + 60'000);
    });
    Tell("another minute appended", append,
         Milliseconds([&] { Run("mkvmerge -o " + copy + " " + other + " && sync " + copy); }),
         "mkvmerge, which copies");
}

}  // namespace

int main(int argc, char** argv) {
    const fs::path folder =
        fs::path(argc > 1 ? argv[1] : fs::temp_directory_path()) / ("package_bench." + std::to_string(getpid()));
    fs::create_directory(folder);
    std::printf("%-42s %12s %14s %8s\n", "", "own", "peer", "times");
    Measure(folder);
    fs::remove_all(folder);
}
