#include "apps/kestrum/Signals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace kestrum::app {
namespace {

sigset_t EndSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&set, number);
    return set;
}

}  // namespace

void BlockEndSignals() {
    const sigset_t set = EndSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

Signals::Signals(host::IEventLoop& loop, std::function<void(int)> onSignal)
    : m_loop(loop), m_onSignal(std::move(onSignal)) {
    if (pipe(m_stopPipe) == 0) m_thread = std::thread([this] { Wait(m_stopPipe[0]); });
}

Signals::~Signals() {
    if (m_thread.joinable()) {
        close(m_stopPipe[1]);
        m_thread.join();
        close(m_stopPipe[0]);
    }
}

void Signals::Wait(int stopPipe) {
    const sigset_t set = EndSignals();
    const int signals = signalfd(-1, &set, SFD_CLOEXEC);
    pollfd sources[] = {{signals, POLLIN, 0}, {stopPipe, POLLIN, 0}};
    while (poll(sources, 2, -1) >= 0 && sources[1].revents == 0) {
        signalfd_siginfo info{};
        if (read(signals, &info, sizeof info) != static_cast<ssize_t>(sizeof info)) continue;
        m_loop.Post([callback = m_onSignal, number = static_cast<int>(info.ssi_signo)] { callback(number); });
    }
    close(signals);
}

}  // namespace kestrum::app
