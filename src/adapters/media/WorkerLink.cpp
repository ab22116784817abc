#include "adapters/media/WorkerLink.h"

#include <sys/wait.h>

#include <chrono>
#include <utility>

#include "adapters/media/WorkerSpawn.h"

namespace kestrum::adapters {
namespace {

constexpr int kFarewellMs = 20'000;
constexpr int kReapStepMs = 20;

/// Waits for the end of a process of ours for a while; one that does not end is left to itself, since it may still be
/// writing what must not be lost.
void Reap(pid_t pid) {
    for (int waited = 0; waited < kFarewellMs; waited += kReapStepMs) {
        if (waitpid(pid, nullptr, WNOHANG) != 0) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(kReapStepMs));
    }
}

}  // namespace

WorkerLink::WorkerLink(std::string program, host::IEventLoop& loop) : m_program(std::move(program)), m_loop(loop) {
    EnsureWorker();
}

WorkerLink::~WorkerLink() {
    m_levelSink->call = nullptr;
    m_deviceSink->call = nullptr;
    m_progressSink->call = nullptr;
    StopReader();
}

void WorkerLink::StopReader() {
    if (m_channel) m_channel->Shutdown();
    if (m_reader.joinable()) m_reader.join();
    m_channel.reset();
}

bool WorkerLink::EnsureWorker() {
    if (m_isAlive) return true;
    StopReader();
    const auto worker = SpawnWorker(m_program);
    if (!worker) {
        m_lastFailure = {wire::FailedPart::kOther, 0, "The media worker " + m_program + " cannot be started."};
        return false;
    }
    ++m_generation;
    m_isAlive = true;
    m_channel = std::make_shared<wire::Channel>(worker->socket);
    m_reader = std::thread([this, channel = m_channel, pid = worker->pid] { ReadAnswers(channel, pid); });
    return true;
}

void WorkerLink::ReadAnswers(std::shared_ptr<wire::Channel> channel, pid_t pid) {
    try {
        while (auto message = channel->Receive()) Take(std::move(*message));
    } catch (const wire::WireError&) {
        // A worker that talks nonsense counts as gone.
        channel->Shutdown();
    }
    GiveUp();
    Reap(pid);
}

void WorkerLink::Take(wire::Message message) {
    if (message.kind == wire::Kind::kLevel) {
        return TakeLevel(static_cast<std::int32_t>(wire::Unpack<wire::Number>(message.body).value));
    }
    if (message.kind == wire::Kind::kDevice) {
        return TakeDeviceChange(wire::Unpack<wire::DeviceChange>(message.body));
    }
    if (message.kind == wire::Kind::kProgress) {
        return PassOn(m_progressSink, static_cast<std::int32_t>(wire::Unpack<wire::Number>(message.body).value));
    }
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_pending.find(message.id);
        if (found == m_pending.end()) return;  // its caller has stopped waiting
        found->second->answer = std::move(message);
        found->second->isDone = true;
        m_pending.erase(found);
    }
    m_answered.notify_all();
    // Wakes a caller that pumps.
    m_loop.Post([] {});
}

void WorkerLink::GiveUp() {
    {
        const std::lock_guard lock(m_mutex);
        m_isAlive = false;
        m_level = 0;
        for (auto& [id, pending] : m_pending) pending->isDone = true;
        m_pending.clear();
    }
    m_answered.notify_all();
    m_loop.Post([] {});
}

void WorkerLink::TakeLevel(std::int32_t level) {
    m_level = level;
    PassOn(m_levelSink, level);
}

void WorkerLink::PassOn(const NumberSinkPtr& sink, std::int32_t value) {
    sink->value = value;
    if (sink->isPosted.exchange(true)) return;
    m_loop.Post([sink] {
        sink->isPosted = false;
        if (const auto call = sink->call) call(sink->value);
    });
}

void WorkerLink::TakeDeviceChange(wire::DeviceChange change) {
    m_loop.Post([sink = m_deviceSink, change = std::move(change)] {
        if (const auto call = sink->call) call(change);
    });
}

void WorkerLink::OnDeviceChange(std::function<void(const wire::DeviceChange&)> onChange) {
    m_deviceSink->call = std::move(onChange);
}

void WorkerLink::OnProgress(std::function<void(std::int32_t)> onProgress) {
    m_progressSink->call = std::move(onProgress);
}

void WorkerLink::OnLevel(std::function<void(std::int32_t)> onLevel) {
    m_levelSink->call = std::move(onLevel);
}

std::optional<wire::Message> WorkerLink::Exchange(wire::Kind kind, std::string body, std::int32_t timeoutMs,
                                                  bool pump) {
    m_lastFailure = {};
    if (!EnsureWorker()) return std::nullopt;
    const auto pending = std::make_shared<Pending>();
    const std::uint32_t id = m_nextId++;
    {
        const std::lock_guard lock(m_mutex);
        // A worker that dies from here on marks the request as done.
        if (!m_isAlive) return std::nullopt;
        m_pending[id] = pending;
    }
    if (!m_channel->Send({kind, id, std::move(body)})) m_channel->Shutdown();
    WaitFor(pending, timeoutMs, pump);
    const std::lock_guard lock(m_mutex);
    m_pending.erase(id);
    return pending->answer;
}

void WorkerLink::WaitFor(const PendingPtr& pending, std::int32_t timeoutMs, bool pump) {
    if (pump) {
        m_loop.RunUntil([&] {
            const std::lock_guard lock(m_mutex);
            return pending->isDone;
        });
        return;
    }
    std::unique_lock lock(m_mutex);
    m_answered.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return pending->isDone; });
}

}  // namespace kestrum::adapters
