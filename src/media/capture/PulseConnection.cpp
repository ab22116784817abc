#include "media/capture/PulseConnection.h"

#include "media/capture/Clock.h"

namespace kestrum::media {

void PulseConnection::ContextDeleter::operator()(pa_context* context) const {
    pa_context_disconnect(context);
    pa_context_unref(context);
}

PulseConnection::PulseConnection()
    : m_loop(pa_mainloop_new()), m_context(pa_context_new(pa_mainloop_get_api(m_loop.get()), "Kestrum")) {
    pa_context_connect(m_context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

PulseConnection::~PulseConnection() = default;

void PulseConnection::Pump(int timeoutMs) {
    if (pa_mainloop_prepare(m_loop.get(), timeoutMs * 1000) < 0) return;
    if (pa_mainloop_poll(m_loop.get()) < 0) return;
    pa_mainloop_dispatch(m_loop.get());
}

bool PulseConnection::WaitUntilReady(int timeoutMs) {
    const std::int64_t end = MonotonicNs() + timeoutMs * kNsPerMs;
    while (!IsReady() && !HasFailed() && MonotonicNs() < end) Pump(20);
    return IsReady();
}

bool PulseConnection::Finish(pa_operation* operation, int timeoutMs) {
    if (!operation) return false;
    const std::int64_t end = MonotonicNs() + timeoutMs * kNsPerMs;
    while (pa_operation_get_state(operation) == PA_OPERATION_RUNNING && !HasFailed() && MonotonicNs() < end) Pump(20);
    const bool done = pa_operation_get_state(operation) == PA_OPERATION_DONE;
    if (!done) pa_operation_cancel(operation);
    pa_operation_unref(operation);
    return done;
}

}  // namespace kestrum::media
