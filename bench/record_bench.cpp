// The recorder without a presentation, for recorders.py and the other measurements in Python: records the whole display
// and a microphone until its input ends. Tells at its begin which moment of the monotonic clock is position 0, in ns.
//   record_bench PACKAGE PICTURES-A-SECOND KBIT-A-SECOND mono|stereo [SOURCE]     "mic" if not said otherwise
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "media/capture/CaptureError.h"
#include "media/capture/Clock.h"
#include "media/capture/Recorder.h"

namespace {

using namespace kestrum::media;

/// To half a millisecond: positions are whole ones, cut off.
std::int64_t StartNs(Recorder& recorder) {
    const std::int64_t now = MonotonicNs();
    return now - recorder.AddKeyFrame() * kNsPerMs - kNsPerMs / 2;
}

int Record(int count, char** words) {
    RecorderSettings settings;
    settings.area = {0, 0, 1920, 1080};
    settings.framesPerSecond = std::atoi(words[2]);
    settings.soundSources = {count > 5 ? words[5] : "mic"};
    settings.audioKbps = std::atoi(words[3]);
    settings.stereo = std::string_view(words[4]) == "stereo";
    Recorder recorder(settings, [](int) {});
    recorder.OpenDevices();
    recorder.Start(words[1], {});
    std::printf("recording %" PRId64 "\n", StartNs(recorder));
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    recorder.Stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) try {
    return argc == 5 || argc == 6 ? Record(argc, argv) : 2;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
