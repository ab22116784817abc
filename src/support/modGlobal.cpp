#include "support/modGlobal.h"

#include "host/ResumeNext.h"
#include "support/modConfig.h"

namespace kestrum::modGlobal {
namespace {

constexpr std::int32_t kLargestTick = 2147483647;
constexpr std::int32_t kTokenLifeMs = 60000;

}  // namespace

String SecondsToText(std::int32_t seconds) {
    const auto part = [](std::int32_t number) { return FormatPattern(number, u"00"); };
    return part(seconds / 3600) + u":" + part(seconds / 60 % 60) + u":" + part(seconds % 60);
}

std::int32_t GetPositiveTick(host::IEventLoop& loop) {
    return loop.TickCount() & kLargestTick;
}

std::int32_t TickDiff(std::int32_t earlier, std::int32_t later) {
    const std::int64_t from = earlier;
    const std::int64_t to = later;
    return ToInt32(from > to ? kLargestTick - from + to : to - from);
}

bool IsTokenFresh(const support::Context& c, StringView owner) {
    const String section = u"tokens\\" + String(owner);
    const std::int32_t touched = ToInt32(modConfig::GetSetting(c, section, u"touchtime", u"0"));
    return TickDiff(touched, GetPositiveTick(c.host.loop)) < kTokenLifeMs;
}

bool IsRecordingLive(const support::Context& c, StringView owner) {
    const String section = u"tokens\\" + String(owner);
    return host::ResumeNext(c.host.trace).If([&] {
        return modConfig::GetSetting(c, section, u"recording", u"0") == u"1" && IsTokenFresh(c, owner);
    });
}

std::int32_t GetOsVersion(const support::Context& c) {
    return c.host.shell.OsVersionCode();
}

String GetLocalAppDataPath(const support::Context& c) {
    constexpr std::int32_t kLocalAppData = 28;
    constexpr std::size_t kLongestPath = 260;
    const String path = c.host.shell.SpecialFolder(kLocalAppData).substr(0, kLongestPath);
    return path.substr(0, path.find(u'\0'));
}

}  // namespace kestrum::modGlobal
