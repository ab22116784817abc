#include "adapters/sim/Faults.h"

#include "adapters/sim/Failure.h"

namespace kestrum::sim {

namespace {

bool Matches(const String& pattern, const String& call) {
    if (pattern.empty() || pattern.back() != u'*') return pattern == call;
    return call.compare(0, pattern.size() - 1, pattern, 0, pattern.size() - 1) == 0;
}

}  // namespace

void Faults::FailCall(const String& call, int n, Times times, host::ErrorNumber number) {
    m_plans.push_back(Plan{call, n, times, number});
}

int Faults::CountOf(const String& call) const {
    auto found = m_counts.find(call);
    return found == m_counts.end() ? 0 : found->second;
}

const Faults::Plan* Faults::Count(const String& call) {
    ++m_counts[call];
    const Plan* hit = nullptr;
    for (Plan& plan : m_plans) {
        if (!Matches(plan.pattern, call)) continue;
        ++plan.seen;
        if (plan.seen == plan.n || (plan.times == Times::ForEver && plan.seen > plan.n)) hit = &plan;
    }
    if (hit) {
        m_injected.push_back(call);
        if (m_notify) m_notify();
    }
    return hit;
}

bool Faults::Fails(const String& call) {
    return Count(call) != nullptr;
}

void Faults::Check(const String& call) {
    if (const Plan* plan = Count(call)) throw host::Error(plan->number, call, u"Injected failure of " + call);
}

int FaultSweep(const String& pattern, const std::function<void(const std::function<void(Faults&)>& arm)>& scenario) {
    constexpr int kMostRuns = 5000;
    int runs = 0;
    for (Times times : {Times::Once, Times::ForEver}) {
        for (int n = 1;; ++n) {
            if (n > kMostRuns) throw Failure("FaultSweep: the scenario never ran to its end without a fault");
            bool armed = false;
            bool injected = false;
            scenario([&](Faults& faults) {
                armed = true;
                faults.FailCall(pattern, n, times);
                faults.OnInjected([&] { injected = true; });
            });
            if (!armed) throw Failure("FaultSweep: the scenario did not arm the faults");
            if (!injected) break;
            ++runs;
        }
    }
    return runs;
}

}  // namespace kestrum::sim
