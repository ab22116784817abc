#include "media/convert/ConvertCommand.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <new>

#include "media/convert/AvHandles.h"
#include "media/convert/ConvertArguments.h"
#include "media/convert/DrawFit.h"
#include "media/convert/Mp4Conversion.h"
#include "media/convert/StopRequest.h"
#include "media/package/Error.h"

namespace kestrum::media {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongLine = 2;
constexpr int kStopped = 3;
constexpr int kTooLarge = 4;
constexpr int kNiceness = 10;

void Say(const std::string& line) {
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

/// Tells the position ten times a second at most: a copy runs through thousands of packets in that time.
class PositionLines {
  public:
    void operator()(std::int64_t position) {
        const auto now = std::chrono::steady_clock::now();
        if (now - m_last < std::chrono::milliseconds(100)) return;
        m_last = now;
        Say("pos " + std::to_string(position));
    }

  private:
    std::chrono::steady_clock::time_point m_last = std::chrono::steady_clock::now() - std::chrono::seconds(1);
};

int End(const char* word, int exitCode) {
    Say(std::string("end ") + word);
    return exitCode;
}

int Fail(const std::string& sentence) {
    std::fprintf(stderr, "%s\n", sentence.c_str());
    return End("failed", kFailed);
}

int Convert(const ConvertRequest& request) {
    StopRequest stop(STDIN_FILENO);
    const ConvertCallbacks callbacks{PositionLines(), [&stop] { return stop.Requested(); }};
    switch (ConvertToMp4(request, callbacks)) {
        case ConvertOutcome::kStopped:
            return End("stopped", kStopped);
        case ConvertOutcome::kSizeLimit:
            return End("size", kTooLarge);
        case ConvertOutcome::kFinished:
            break;
    }
    return End("finished", 0);
}

}  // namespace

int RunConvertMp4(const std::vector<std::string>& arguments) {
    std::signal(SIGPIPE, SIG_IGN);  // a parent that is gone is noticed on standard input
    [[maybe_unused]] const int niceness = nice(kNiceness);
    av_log_set_level(AV_LOG_FATAL);  // what matters comes back as an error of the call
    try {
        const auto request = ParseConvertMp4(arguments);
        if (!request) {
            std::fputs(kConvertMp4Usage, stderr);
            return kWrongLine;
        }
        return Convert(*request);
    } catch (const Error& error) {
        return Fail(error.what());
    } catch (const std::bad_alloc&) {
        return End("memory", kFailed);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}

int RunDrawFit(const std::vector<std::string>& arguments) {
    if (arguments.size() != 2) {
        std::fputs("ksmedia draw-fit TARGET SOURCE\n", stderr);
        return kWrongLine;
    }
    av_log_set_level(AV_LOG_FATAL);
    try {
        DrawFit(arguments[0], arguments[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return kFailed;
    }
}

}  // namespace kestrum::media
