// How long an office is waited for, by a clock that the test sets.
#include "adapters/impress/OfficePulse.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace kestrum::impress {
namespace {

using namespace std::chrono_literals;

constexpr pid_t kUnknown = 0;  // a process that never counts as working

TEST(PatientWait, AnOfficeThatDoesNothing_IsGivenUpAfterItsTime) {
    const auto begin = PatientWait::Clock::now();
    PatientWait wait(kUnknown, {2000, 20000}, begin);
    for (auto time = 100ms; time < 2000ms; time += 100ms) EXPECT_FALSE(wait.Exhausted(begin + time));
    EXPECT_TRUE(wait.Exhausted(begin + 2000ms));
}

TEST(PatientWait, TimeInWhichNobodyWatched_IsNotHeldAgainstTheOffice) {
    const auto begin = PatientWait::Clock::now();
    PatientWait wait(kUnknown, {2000, 20000}, begin);
    EXPECT_FALSE(wait.Exhausted(begin + 100ms));
    EXPECT_FALSE(wait.Exhausted(begin + 10min)) << "both were stopped";
    EXPECT_TRUE(wait.Exhausted(begin + 10min + 1000ms));
}

TEST(PatientWait, AnOfficeThatWorksAllTheTime_IsGivenUpAtLast) {
    const auto begin = PatientWait::Clock::now();
    PatientWait wait(getpid(), {60000, 3000}, begin);  // this process runs: it works
    EXPECT_FALSE(wait.Exhausted(begin + 1000ms));
    EXPECT_FALSE(wait.Exhausted(begin + 2000ms));
    EXPECT_TRUE(wait.Exhausted(begin + 3000ms));
}

}  // namespace
}  // namespace kestrum::impress
