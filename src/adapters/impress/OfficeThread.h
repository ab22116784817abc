// Runs jobs, one after another, on the office's own main thread. A UNO call from a client runs on a worker thread of
// the office, which deadlocks with some desktops; a job handed to the office as an asynchronous callback does not: the
// office calls it from its main thread, and every UNO call that the job makes comes back to that same thread.
#pragma once

#include <com/sun/star/uno/XComponentContext.hpp>
#include <functional>
#include <memory>

namespace kestrum::impress {

namespace css = com::sun::star;

class OfficeThread {
  public:
    /// A job never throws.
    using Job = std::function<void()>;

    explicit OfficeThread(const css::uno::Reference<css::uno::XComponentContext>& remote);
    /// Drops the jobs that have not begun. A thread held by an office that neither answers nor dies is left to itself.
    ~OfficeThread();
    OfficeThread(const OfficeThread&) = delete;
    OfficeThread& operator=(const OfficeThread&) = delete;

    /// Queues a job; returns at once. A job is dropped without a trace when the office is gone.
    void Submit(Job job);
    /// The office is gone: a job that it holds will not come back.
    void Abandon();

  private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
};

}  // namespace kestrum::impress
