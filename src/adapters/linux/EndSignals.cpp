#include "adapters/linux/EndSignals.h"

#include <pthread.h>
#include <sys/signalfd.h>

#include <utility>

namespace kestrum::platform {

namespace {

sigset_t Ends() {
    sigset_t ends;
    sigemptyset(&ends);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, number);
    return ends;
}

}  // namespace

void EndSignals::Hold() {
    const sigset_t ends = Ends();
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
}

EndSignals::EndSignals(LoopBase& loop, std::function<void(int)> onEnd) : m_onEnd(std::move(onEnd)) {
    const sigset_t ends = Ends();
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
    while (read(m_signals.Get(), &info, sizeof info) == sizeof info) m_onEnd(static_cast<int>(info.ssi_signo));
}

}  // namespace kestrum::platform
