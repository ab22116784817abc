#include "media/worker/Commands.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "media/capture/Camera.h"
#include "media/capture/SoundSources.h"
#include "media/convert/AvHandles.h"
#include "media/package/Package.h"
#include "media/worker/WorkerServer.h"

namespace kestrum::media {
namespace {

const char* NameOf(Soundness soundness) {
    switch (soundness) {
        case Soundness::kSound:
            return "sound";
        case Soundness::kInterrupted:
            return "interrupted";
        case Soundness::kRecording:
            return "being recorded";
        case Soundness::kDamaged:
            return "damaged";
        case Soundness::kForeign:
            return "not a package";
        case Soundness::kMissing:
            return "missing";
    }
    return "unknown";
}

std::string OnlyWord(const std::vector<std::string>& words) {
    if (words.size() != 1) throw std::runtime_error("one package is expected");
    return words[0];
}

void PrintTracks(const TrackConfigs& tracks) {
    std::printf("frame size: %dx%d\n", tracks.video.width, tracks.video.height);
    if (!tracks.audio) return;
    std::printf("sound: %d Hz, %d channel(s), %d kbit/s\n", tracks.audio->sampleRate, tracks.audio->channels,
                tracks.audio->bitsPerSecond / 1000);
}

}  // namespace

int InfoCommand(const std::vector<std::string>& words) {
    const std::string path = OnlyWord(words);
    const auto package = Describe(path);
    std::printf("state: %s\n", NameOf(package.soundness));
    if (package.soundness == Soundness::kMissing || package.soundness == Soundness::kForeign) return 1;
    std::printf("format version: %d.%d\n", package.formatVersion / 256, package.formatVersion % 256);
    std::printf("length: %lld ms\n", static_cast<long long>(package.lengthMs));
    if (package.tracks) PrintTracks(*package.tracks);
    std::printf("key frames: %zu\n", package.keyFrames.size());
    for (const auto& [name, bytes] : package.stored) {
        if (bytes) std::printf("stored file: %s, %zu bytes\n", name.c_str(), bytes->size());
    }
    return package.soundness == Soundness::kDamaged ? 1 : 0;
}

int KeysCommand(const std::vector<std::string>& words) {
    for (const auto position : KeyFrames(OnlyWord(words))) std::printf("%lld\n", static_cast<long long>(position));
    return 0;
}

int VerifyCommand(const std::vector<std::string>& words) {
    const bool quick = words.size() == 2 && words[0] == "--quick";
    const std::string path = OnlyWord(quick ? std::vector{words[1]} : words);
    VerifyResult result;
    if (quick) {
        result.soundness = QuickVerify(path);
    } else {
        const auto onPercent = [](int percent) { std::fprintf(stderr, "\r%d %%", percent); };
        result = WholeVerify(path, onPercent, [] { return false; });
        std::fprintf(stderr, "\n");
    }
    std::printf("%s\n", NameOf(result.soundness));
    if (result.recovered) {
        std::printf("recovered: %d index entries, %lld ms of media\n", result.recovered->entries,
                    static_cast<long long>(result.recovered->lengthMs));
    }
    return result.soundness == Soundness::kSound || result.soundness == Soundness::kRecording ? 0 : 1;
}

int DevicesCommand(const std::vector<std::string>&) {
    for (const auto& source : ListSoundSources()) {
        std::printf("%s\t%s%s\t%s\n", source.name.c_str(), source.isSystemSound ? "system sound" : "input",
                    source.isDefault ? " (default)" : "", source.description.c_str());
    }
    for (const auto& camera : ListCameras())
        std::printf("%s\tcamera\t%s\n", camera.id.c_str(), camera.description.c_str());
    return 0;
}

int ServeCommand(const std::vector<std::string>& words) {
    const int fd = words.size() == 1 ? std::atoi(words[0].c_str()) : -1;
    if (fd < 3) throw std::runtime_error("serve is started by the recorder itself, with a connected socket");
    // Blocked before any thread exists, so that the server alone hears it. The keyboard's Ctrl-C is for the program
    // that started the worker.
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    // Failures are answers here; the libraries' own lines would stand among those of the program that started us.
    av_log_set_level(AV_LOG_QUIET);
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGHUP, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    return WorkerServer(fd).Run();
}

}  // namespace kestrum::media
