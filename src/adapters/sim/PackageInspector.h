// The inspector on the fake package: what KsLib would say of it, and what a test scripts besides.
#pragma once

#include <algorithm>

#include "adapters/sim/World.h"
#include "host/IPackageInspector.h"

namespace kestrum::sim {

class PackageInspector final : public host::IPackageInspector {
  public:
    explicit PackageInspector(World& world) : m_world(world) {}

    host::PackageInspection Inspect(const String& package, bool everything,
                                    std::function<void(std::int32_t)> onPercent) override;
    void Cancel() override { m_cancel = true; }

    /// Damage that the fake package does not know of itself.
    std::vector<host::PackageDamage> damages;
    std::vector<host::PackageChapter> chapters;
    /// A living recorder holds it.
    bool recording = false;
    /// Runs in the middle of a look at everything.
    std::function<void()> meanwhile;

  private:
    World& m_world;
    bool m_cancel = false;
};

}  // namespace kestrum::sim
