// The fault switch: makes the n-th call of a port fail, once or from then on. Every fallible call of the world asks
// here under its name ("fs.WriteFile", "ksLib.EncoderStart"). A call that can raise raises host::Error; one that
// answers with a flag answers its failure value.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "host/Error.h"

namespace kestrum::sim {

enum class Times { Once, ForEver };
inline constexpr Times Once = Times::Once;
inline constexpr Times ForEver = Times::ForEver;

class Faults {
  public:
    /// Lets call number `n` (from 1, counted from now) of `call` fail; with ForEver every later one too. `call` is a
    /// full name, or a prefix that ends in '*' ("fs.*", "*"); the calls of a prefix are counted together.
    void FailCall(const String& call, int n, Times times, host::ErrorNumber number = host::ErrorNumber::Automation);

    /// Takes every fault away; the log of injected faults stays.
    void Clear() { m_plans.clear(); }

    /// The faults that were injected, by the name of the call.
    const std::vector<String>& Injected() const { return m_injected; }

    /// How often `call` (full name) was made.
    int CountOf(const String& call) const;

    /// Calls `notify` at each injected fault; for the sweep, whose world is gone when it wants to know.
    void OnInjected(std::function<void()> notify) { m_notify = std::move(notify); }

    // --- for the ports ---------------------------------------------------------------------------------------------

    /// Counts one call; true if it has to fail.
    bool Fails(const String& call);
    /// Counts one call; raises host::Error if it has to fail.
    void Check(const String& call);

  private:
    struct Plan {
        String pattern;
        int n;
        Times times;
        host::ErrorNumber number;
        int seen = 0;
    };
    const Plan* Count(const String& call);

    std::vector<Plan> m_plans;
    std::vector<String> m_injected;
    std::map<String, int> m_counts;
    std::function<void()> m_notify;
};

/// Runs `scenario` again and again, each time in a world of its own making, with call 1, 2, 3 ... of `pattern` failing
/// once, then again with that call and all later ones failing, until a run got through without an injected fault.
/// The scenario calls `arm(world.faults)` at the place from where faults may come. Fails after 5000 runs.
/// Gives the number of runs that had a fault.
int FaultSweep(const String& pattern, const std::function<void(const std::function<void(Faults&)>& arm)>& scenario);

}  // namespace kestrum::sim
