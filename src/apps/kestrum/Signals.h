// SIGINT, SIGTERM and SIGHUP as events of the loop, so that Ctrl-C or a logout ends the work in the normal way.
#pragma once

#include <csignal>
#include <functional>
#include <thread>

#include "host/IEventLoop.h"

namespace kestrum::app {

/// Keeps the three signals from ending the process; must run before any thread is started.
void BlockEndSignals();

class Signals {
  public:
    /// `onSignal` gets the signal's number on the loop's thread, once for each signal that comes.
    Signals(host::IEventLoop& loop, std::function<void(int)> onSignal);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

  private:
    void Wait(int stopPipe);

    host::IEventLoop& m_loop;
    std::function<void(int)> m_onSignal;
    int m_stopPipe[2] = {-1, -1};
    std::thread m_thread;
};

}  // namespace kestrum::app
