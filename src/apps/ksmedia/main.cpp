// ksmedia: the media worker and its batch subcommands. Decides nothing but which subcommand runs; each one is a
// function of the engine with the words that follow its name.
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "media/convert/ConvertCommand.h"
#include "media/worker/Commands.h"

namespace {

struct Subcommand {
    const char* name;
    const char* usage;
    int (*run)(const std::vector<std::string>& words);
};

constexpr Subcommand kSubcommands[] = {
    {"info", "PACKAGE                    length, frame size, tracks, stored files", kestrum::media::InfoCommand},
    {"keys", "PACKAGE                    key-frame positions in ms, one a line", kestrum::media::KeysCommand},
    {"verify", "[--quick] PACKAGE        checks it; recovers an interrupted recording", kestrum::media::VerifyCommand},
    {"devices", "                        sound sources: name, kind, description", kestrum::media::DevicesCommand},
    {"convert-mp4", "...                  an MP4 movie from a package", kestrum::media::RunConvertMp4},
    {"draw-fit", "TARGET SOURCE           draws SOURCE into the picture TARGET", kestrum::media::RunDrawFit},
    {"serve", "FD                        answers requests on a connected socket", kestrum::media::ServeCommand},
};

int Usage(std::FILE* target) {
    std::fprintf(target, "usage: ksmedia SUBCOMMAND ...\n");
    for (const auto& subcommand : kSubcommands) std::fprintf(target, "  %s %s\n", subcommand.name, subcommand.usage);
    return target == stdout ? 0 : 2;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty()) return Usage(stderr);
    if (words[0] == "--help" || words[0] == "help") return Usage(stdout);
    for (const auto& subcommand : kSubcommands) {
        if (words[0] != subcommand.name) continue;
        try {
            return subcommand.run({words.begin() + 1, words.end()});
        } catch (const std::exception& error) {
            std::fprintf(stderr, "ksmedia: %s\n", error.what());
            return 1;
        }
    }
    return Usage(stderr);
}
