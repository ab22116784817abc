// The outcome of a verification as lines for people and as JSON for scripts.
#pragma once

#include <vector>

#include "apps/commandline/Finding.h"
#include "support/Value.h"

namespace kestrum::app {

struct VerifyReport {
    String package;
    /// "whole", "damaged", "repaired", "refused" or "cancelled".
    String state;
    /// The outcome in one sentence.
    String text;
    std::int32_t lengthMs = 0;
    std::int32_t entries = 0;
    std::vector<Finding> findings;
    /// The copy of the package as it was; empty without a repair.
    String kept;
};

Value ToJson(const support::Context& c, const VerifyReport& report);

/// One paragraph a finding, then the outcome. `repairing`: tells what was done instead of what would be.
String ToText(const support::Context& c, const VerifyReport& report, bool repairing);

}  // namespace kestrum::app
