// One connection to one office, and the promise that no call hangs. A call runs on the office's main thread; the
// caller waits while the office answers or is seen to work. An office that does neither for two seconds is given up
// for dead, and from then on every call fails at once. Its process may still live: nothing is asked of it any more.
#pragma once

#include <com/sun/star/uno/XComponentContext.hpp>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>

#include "adapters/impress/OfficePulse.h"
#include "adapters/impress/OfficeThread.h"
#include "host/String.h"

namespace kestrum::impress {

class OfficeLink {
  public:
    /// Connects to the office listening on `pipe`; none if nobody listens there yet.
    static std::unique_ptr<OfficeLink> TryConnect(const String& pipe);
    ~OfficeLink();
    OfficeLink(const OfficeLink&) = delete;
    OfficeLink& operator=(const OfficeLink&) = delete;

    /// Process of the office, 0 if unknown.
    pid_t ProcessId() const;
    /// The office's component context; copy it into a job.
    const css::uno::Reference<css::uno::XComponentContext>& Remote() const;

    /// Called once, on any thread, when the office has died or was given up.
    void OnDeath(std::function<void()> callback);
    bool IsDead() const;
    /// Gives the office up.
    void GiveUp();

    /// Runs `job` on the office's main thread and waits for its result. `job` must own all that it uses: it may still
    /// run when the caller has given up. Throws host::Error with `source`.
    template <class Job>
    auto Call(const String& source, Job job, Patience patience = {}) -> std::invoke_result_t<Job> {
        using Result = std::invoke_result_t<Job>;
        if constexpr (std::is_void_v<Result>) {
            Wait(source, std::move(job), patience);
        } else {
            auto result = std::make_shared<std::optional<Result>>();
            Wait(
                source, [result, job = std::move(job)]() mutable { result->emplace(job()); }, patience);
            return std::move(**result);
        }
    }

    /// Runs `job` like Call, but does not wait; its failures are dropped. The answer tells whether it is still under
    /// way.
    std::function<bool()> Send(std::function<void()> job);

  private:
    struct Ticket;
    struct State;
    explicit OfficeLink(std::shared_ptr<State> state);
    void Wait(const String& source, std::function<void()> job, Patience patience);
    std::shared_ptr<Ticket> Submit(const String& source, std::function<void()> job);

    std::shared_ptr<State> m_state;
    std::unique_ptr<OfficeThread> m_thread;
};

}  // namespace kestrum::impress
