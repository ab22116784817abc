#include "adapters/impress/OfficeThread.h"

#include <chrono>
#include <com/sun/star/awt/AsyncCallback.hpp>
#include <com/sun/star/awt/XCallback.hpp>
#include <com/sun/star/awt/XRequestCallback.hpp>
#include <condition_variable>
#include <cppuhelper/implbase1.hxx>
#include <deque>
#include <mutex>
#include <thread>

namespace kestrum::impress {

struct OfficeThread::Shared {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Job> jobs;
    bool busy = false;  ///< the office holds a job
    bool stop = false;
    bool ended = false;
};

namespace {

/// One job on its way through the office. Lives until the office lets go of it.
class JobCallback : public cppu::WeakImplHelper1<css::awt::XCallback> {
  public:
    JobCallback(OfficeThread::Job job, std::function<void()> done) : m_job(std::move(job)), m_done(std::move(done)) {}
    void SAL_CALL notify(const css::uno::Any&) override {
        m_job();
        m_done();
    }

  private:
    OfficeThread::Job m_job;
    std::function<void()> m_done;
};

}  // namespace

OfficeThread::OfficeThread(const css::uno::Reference<css::uno::XComponentContext>& remote)
    : m_shared(std::make_shared<Shared>()) {
    auto hand = [shared = m_shared, remote](Job job) {
        {
            std::lock_guard lock(shared->mutex);
            shared->busy = true;
        }
        auto done = [shared] {
            std::lock_guard lock(shared->mutex);
            shared->busy = false;
            shared->changed.notify_all();
        };
        try {
            css::awt::AsyncCallback::create(remote)->addCallback(new JobCallback(std::move(job), done),
                                                                 css::uno::Any());
        } catch (const css::uno::Exception&) {
            done();  // the office is gone; whoever waits for the job learns that from the link
        }
    };
    std::thread([shared = m_shared, hand] {
        std::unique_lock lock(shared->mutex);
        while (!shared->stop) {
            shared->changed.wait(lock, [&] { return shared->stop || (!shared->busy && !shared->jobs.empty()); });
            if (shared->stop) break;
            Job job = std::move(shared->jobs.front());
            shared->jobs.pop_front();
            lock.unlock();
            hand(std::move(job));
            lock.lock();
        }
        shared->ended = true;
        shared->changed.notify_all();
    }).detach();
}

OfficeThread::~OfficeThread() {
    Abandon();
    std::unique_lock lock(m_shared->mutex);
    m_shared->changed.wait_for(lock, std::chrono::seconds(2), [&] { return m_shared->ended; });
}

void OfficeThread::Submit(Job job) {
    std::lock_guard lock(m_shared->mutex);
    m_shared->jobs.push_back(std::move(job));
    m_shared->changed.notify_all();
}

void OfficeThread::Abandon() {
    std::lock_guard lock(m_shared->mutex);
    m_shared->stop = true;
    m_shared->jobs.clear();
    m_shared->changed.notify_all();
}

}  // namespace kestrum::impress
