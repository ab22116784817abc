// One whole verification at a time, on a thread of its own, so that the worker goes on answering.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace kestrum::media {

class VerifyJob {
  public:
    VerifyJob() = default;
    ~VerifyJob() { CancelAndWait(); }
    VerifyJob(const VerifyJob&) = delete;
    VerifyJob& operator=(const VerifyJob&) = delete;

    /// Runs `work`, which asks now and then whether it shall end early. A job before it is ended first.
    void Start(std::function<void(const std::function<bool()>& isCancelled)> work) {
        CancelAndWait();
        m_cancel = false;
        m_thread = std::thread([this, job = std::move(work)] { job([this] { return m_cancel.load(); }); });
    }
    /// Asks the running job to end early.
    void Cancel() { m_cancel = true; }
    void CancelAndWait() {
        Cancel();
        if (m_thread.joinable()) m_thread.join();
    }

  private:
    std::atomic<bool> m_cancel{false};
    std::thread m_thread;
};

}  // namespace kestrum::media
