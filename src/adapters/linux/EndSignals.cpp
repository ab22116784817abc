#include "adapters/linux/EndSignals.h"

#include <pthread.h>
#include <sys/signalfd.h>

#include <utility>

namespace kestrum::platform {

EndSignals::EndSignals(LoopBase& loop, std::function<void()> onEnd) : m_onEnd(std::move(onEnd)) {
    sigset_t ends;
    sigemptyset(&ends);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, number);
    pthread_sigmask(SIG_BLOCK, &ends, &m_before);
    m_signals = Descriptor(signalfd(-1, &ends, SFD_CLOEXEC | SFD_NONBLOCK));
    m_watch = loop.WatchDescriptor(m_signals.Get(), [this] { Read(); });
}

EndSignals::~EndSignals() {
    m_watch.reset();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void EndSignals::Read() {
    signalfd_siginfo info{};
    while (read(m_signals.Get(), &info, sizeof info) == sizeof info) m_onEnd();
}

}  // namespace kestrum::platform
