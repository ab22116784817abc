#include "adapters/linux/TraceLog.h"

#include <gtest/gtest.h>

#include "real/ChildProcess.h"

namespace kestrum::platform {
namespace {

std::string Traced(const std::string& setting) {
    const real::ScopedEnv variable("KESTRUM_TRACE", setting);
    TraceLog trace;
    testing::internal::CaptureStderr();
    trace.Note(u"line 文");
    trace.Skipped(host::Error(host::ErrorNumber::PermissionDenied, u"WriteFile", u"No."));
    return testing::internal::GetCapturedStderr();
}

TEST(TraceLog, WritesLinesOnlyWhenAsked) {
    EXPECT_EQ(Traced(""), "");
    EXPECT_EQ(Traced("0"), "");
    const std::string text = Traced("1");
    EXPECT_NE(text.find(" line 文\n"), std::string::npos);
    EXPECT_NE(text.find("skipped 70 WriteFile: No.\n"), std::string::npos);
}

}  // namespace
}  // namespace kestrum::platform
