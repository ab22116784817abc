#include "adapters/sim/Faults.h"

#include <gtest/gtest.h>

#include "adapters/sim/Failure.h"

namespace kestrum {
namespace {

TEST(SimFaults, Once_FailsOneCall_ForEverAllLaterOnes) {
    sim::Faults faults;
    faults.FailCall(u"a", 2, sim::Once);
    faults.FailCall(u"b", 2, sim::ForEver);
    EXPECT_FALSE(faults.Fails(u"a"));
    EXPECT_TRUE(faults.Fails(u"a"));
    EXPECT_FALSE(faults.Fails(u"a"));
    EXPECT_FALSE(faults.Fails(u"b"));
    EXPECT_TRUE(faults.Fails(u"b"));
    EXPECT_TRUE(faults.Fails(u"b"));
    EXPECT_EQ(faults.CountOf(u"a"), 3);
}

TEST(SimFaults, Prefix_CountsItsCallsTogether) {
    sim::Faults faults;
    faults.FailCall(u"fs.*", 2, sim::Once);
    EXPECT_FALSE(faults.Fails(u"fs.ReadFile"));
    EXPECT_FALSE(faults.Fails(u"app.Run"));
    EXPECT_TRUE(faults.Fails(u"fs.WriteFile"));
}

TEST(SimFaultSweep, VisitsEveryCallOnceAndForEver_ThenStops) {
    std::vector<std::string> seen;
    int runs = sim::FaultSweep(u"*", [&](const auto& arm) {
        sim::Faults faults;
        arm(faults);
        std::string outcome;
        for (const char16_t* call : {u"x", u"y", u"z"}) outcome += faults.Fails(call) ? '-' : '+';
        seen.push_back(outcome);
    });
    EXPECT_EQ(runs, 6);
    EXPECT_EQ(seen, (std::vector<std::string>{"-++", "+-+", "++-", "+++", "---", "+--", "++-", "+++"}));
}

TEST(SimFaultSweep, ScenarioThatForgetsToArm_Fails) {
    EXPECT_THROW(sim::FaultSweep(u"*", [](const auto&) {}), sim::Failure);
}

}  // namespace
}  // namespace kestrum
