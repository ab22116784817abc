// The recorder without a presentation, for bench/recorders.py: records the whole display and the microphone "mic" until
// its input ends.
//   record_bench PACKAGE PICTURES-A-SECOND KBIT-A-SECOND mono|stereo
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "media/capture/CaptureError.h"
#include "media/capture/Recorder.h"

namespace {

using namespace kestrum::media;

int Record(char** words) {
    RecorderSettings settings;
    settings.area = {0, 0, 1920, 1080};
    settings.framesPerSecond = std::atoi(words[2]);
    settings.soundSources = {"mic"};
    settings.audioKbps = std::atoi(words[3]);
    settings.stereo = std::string_view(words[4]) == "stereo";
    Recorder recorder(settings, [](int) {});
    recorder.OpenDevices();
    recorder.Start(words[1], {});
    std::puts("recording");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    recorder.Stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) try { return argc == 5 ? Record(argv) : 2; } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
