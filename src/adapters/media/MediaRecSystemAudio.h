// Whether the system's own sound can be recorded, asked of the worker.
#pragma once

#include "adapters/media/WorkerLink.h"
#include "host/IRecSystemAudio.h"

namespace kestrum::adapters {

class MediaRecSystemAudio : public host::IRecSystemAudio {
  public:
    /// `worker` outlives this object.
    explicit MediaRecSystemAudio(WorkerLink& worker) : m_worker(worker) {}
    std::int32_t CanRecordSystemAudio() override;

  private:
    WorkerLink& m_worker;
};

}  // namespace kestrum::adapters
