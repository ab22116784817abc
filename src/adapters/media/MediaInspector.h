// The package inspector over the worker: a file that brings a reader down costs the worker, never the program.
#pragma once

#include "adapters/media/WorkerLink.h"
#include "host/IPackageInspector.h"

namespace kestrum::adapters {

class MediaInspector final : public host::IPackageInspector {
  public:
    /// `worker` outlives this object.
    explicit MediaInspector(WorkerLink& worker) : m_worker(worker) {}

    host::PackageInspection Inspect(const String& package, bool everything,
                                    std::function<void(std::int32_t)> onPercent) override;
    void Cancel() override;

  private:
    WorkerLink& m_worker;
};

}  // namespace kestrum::adapters
