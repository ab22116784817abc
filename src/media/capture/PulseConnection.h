// A connection to the sound server, pumped by the thread that owns it.
#pragma once

#include <pulse/pulseaudio.h>

#include <memory>

namespace kestrum::media {

class PulseConnection {
  public:
    PulseConnection();
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    /// Waits up to `timeoutMs` for something to happen and handles it.
    void Pump(int timeoutMs);
    /// Pumps until the server has taken the connection. False if it refused or did not answer in time.
    bool WaitUntilReady(int timeoutMs);
    bool IsReady() const { return pa_context_get_state(m_context.get()) == PA_CONTEXT_READY; }
    bool HasFailed() const { return !PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context.get())); }
    /// Pumps until the operation is done and releases it. False if it failed or took longer.
    bool Finish(pa_operation* operation, int timeoutMs);
    pa_context* Context() const { return m_context.get(); }

  private:
    struct LoopDeleter {
        void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    };
    struct ContextDeleter {
        void operator()(pa_context* context) const;
    };
    std::unique_ptr<pa_mainloop, LoopDeleter> m_loop;
    std::unique_ptr<pa_context, ContextDeleter> m_context;
};

}  // namespace kestrum::media
