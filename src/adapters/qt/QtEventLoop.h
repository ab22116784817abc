// The event loop of programs with forms: Qt pumps, and with it the timers, tasks and descriptors of the core. Needs a
// QtApplication.
#pragma once

#include <QSocketNotifier>

#include "adapters/linux/LoopBase.h"

namespace kestrum::qt {

class QtEventLoop : public platform::LoopBase {
  public:
    explicit QtEventLoop(host::ITrace& trace);

    void DoEvents() override;
    void RunUntil(const std::function<bool()>& done) override;

    /// Lets windows appear and paint: no act of the user, no task, timer or descriptor of the core. Waits up to
    /// `waitMs` for something to do.
    void PaintWindows(int waitMs);

  private:
    QSocketNotifier m_ready;
};

}  // namespace kestrum::qt
