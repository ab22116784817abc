#include "media/legacy/ConverterProgram.h"

#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>

namespace kestrum::media {

namespace {

constexpr int kDone = 0, kFailed = 1, kWrongWords = 2;

/// The signals that ask for an end wait until somebody looks.
sigset_t HoldEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

bool EndWasAsked(const sigset_t& signals) {
    const timespec noWait{0, 0};
    return sigtimedwait(&signals, nullptr, &noWait) > 0;
}

int Usage(const ConverterProgram& program, std::FILE* target) {
    std::fprintf(target, "usage: %s %s\n%s\n", program.name, program.words, program.purpose);
    return target == stdout ? kDone : kWrongWords;
}

}  // namespace

int RunConverterProgram(const ConverterProgram& program, int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.size() == 1 && words[0] == "--help") return Usage(program, stdout);
    if (words.size() != program.count) return Usage(program, stderr);
    std::signal(SIGXFSZ, SIG_IGN);  // a limit on the size of files is a full disk like any other
    const sigset_t endSignals = HoldEndSignals();
    try {
        program.run(words, {[](int percent) { std::fprintf(stderr, "\r%d %%", percent); },
                            [&] { return EndWasAsked(endSignals); }});
        std::fputs("\n", stderr);
        return kDone;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "\n%s: %s\n", program.name, error.what());
        return kFailed;
    }
}

}  // namespace kestrum::media
