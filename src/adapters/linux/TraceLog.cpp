#include "adapters/linux/TraceLog.h"

#include <time.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "adapters/linux/LocalTime.h"

namespace kestrum::platform {
namespace {

bool IsTraceWanted() {
    const char* value = std::getenv("KESTRUM_TRACE");
    return value && *value && std::string_view(value) != "0";
}

}  // namespace

TraceLog::TraceLog() : m_enabled(IsTraceWanted()) {}

void TraceLog::Skipped(const host::Error& error) {
    if (m_enabled) Write("skipped " + std::to_string(static_cast<int>(error.Number())) + " " + error.what());
}

void TraceLog::Note(const String& line) {
    if (m_enabled) Write(host::ToUtf8(line));
}

void TraceLog::Write(const std::string& line) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const host::DateTime at = LocalTime(now);
    const std::lock_guard lock(m_mutex);
    std::fprintf(stderr, "%02d:%02d:%02d.%03d %s\n", at.hour, at.minute, at.second, at.millisecond, line.c_str());
}

}  // namespace kestrum::platform
