#include "adapters/qt/QtEventLoop.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace kestrum::qt {
namespace {

/// Keeps the core from being served while Qt handles its own events. (The flag that leaves out all notifiers is not
/// known to each of Qt's dispatchers.)
class Silence {
  public:
    explicit Silence(QSocketNotifier& notifier) : m_notifier(notifier), m_was(notifier.isEnabled()) {
        notifier.setEnabled(false);
    }
    ~Silence() { m_notifier.setEnabled(m_was); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

  private:
    QSocketNotifier& m_notifier;
    bool m_was;
};

}  // namespace

/// One thing of the core for each report of its descriptor, so that RunUntil can ask after each; a loop that Qt nests
/// by itself (a menu, a drag) serves the core in the same way.
QtEventLoop::QtEventLoop(host::ITrace& trace)
    : LoopBase(trace), m_ready(m_core.ReadyDescriptor(), QSocketNotifier::Read) {
    QObject::connect(&m_ready, &QSocketNotifier::activated, &m_ready, [this] { m_core.RunOne(); });
}

/// What the user did comes first, since it ends up as tasks of the core; then the core; then what that left to paint.
void QtEventLoop::DoEvents() {
    {
        const Silence silence(m_ready);
        QCoreApplication::processEvents();
    }
    m_core.RunDue();
    PaintWindows(0);
}

void QtEventLoop::PaintWindows(int waitMs) {
    const Silence silence(m_ready);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, waitMs);
}

void QtEventLoop::RunUntil(const std::function<bool()>& done) {
    while (!done()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

}  // namespace kestrum::qt
