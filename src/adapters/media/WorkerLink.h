// The media worker as a process at the end of a channel: started early, started again by the next request after its
// death. Decides how long an answer may take, and that nobody waits for a worker that has gone.
//
// Requests come from the core's thread; a thread of the link takes the answers. Events are posted to the event loop.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/IEventLoop.h"
#include "media/protocol/Channel.h"

namespace kestrum::adapters {

namespace wire = kestrum::media::protocol;

class WorkerLink {
  public:
    /// `program` is the worker's path. It is started at once and not waited for.
    WorkerLink(std::string program, host::IEventLoop& loop);
    /// Tells the worker to end, which finishes a recording, and waits up to 20 s for that.
    ~WorkerLink();
    WorkerLink(const WorkerLink&) = delete;
    WorkerLink& operator=(const WorkerLink&) = delete;

    /// Counts the workers started: a recording knows by it that its worker has been replaced.
    std::int32_t Generation() const { return m_generation; }
    bool IsAlive() const { return m_isAlive; }

    /// Sends a request and waits for its answer. Nothing comes back if the worker refused (see LastFailure), died, or
    /// took longer than `timeoutMs`. Starts a worker if there is none. Never throws, never pumps.
    template <typename Answer, typename Request>
    std::optional<Answer> Ask(wire::Kind kind, const Request& request, std::int32_t timeoutMs = kTimeoutMs) {
        return Decode<Answer>(Exchange(kind, wire::Pack(request), timeoutMs, false));
    }
    /// The same without limit of time, while the event loop is pumped. Re-enters.
    template <typename Answer, typename Request>
    std::optional<Answer> AskPumping(wire::Kind kind, const Request& request) {
        return Decode<Answer>(Exchange(kind, wire::Pack(request), 0, true));
    }
    /// Why the last request that failed was refused; an empty sentence if the worker died or did not answer.
    const wire::Failure& LastFailure() const { return m_lastFailure; }

    /// Called on the core's thread with the level of the sound, 0 to 100; the last one if several came meanwhile.
    void OnLevel(std::function<void(std::int32_t)> onLevel);
    std::int32_t LastLevel() const { return m_level; }
    /// Called on the core's thread for each device of the recording that was lost or is back; an empty function ends
    /// it.
    void OnDeviceChange(std::function<void(const wire::DeviceChange&)> onChange);
    /// Called on the core's thread with the percentage of the request that AskPumping waits for; an empty function ends
    /// it.
    void OnProgress(std::function<void(std::int32_t)> onProgress);

    /// Long enough for a slow disk, short enough for a person who waits.
    static constexpr std::int32_t kTimeoutMs = 20'000;

  private:
    struct Pending {
        bool isDone = false;
        std::optional<wire::Message> answer;
    };
    using PendingPtr = std::shared_ptr<Pending>;

    template <typename Answer>
    std::optional<Answer> Decode(const std::optional<wire::Message>& message) {
        try {
            if (!message) return std::nullopt;
            if (message->kind == wire::Kind::kDone) return wire::Unpack<Answer>(message->body);
            m_lastFailure = wire::Unpack<wire::Failure>(message->body);
        } catch (const wire::WireError& error) {
            m_lastFailure.sentence = error.what();
        }
        return std::nullopt;
    }

    bool EnsureWorker();
    void StopReader();
    std::optional<wire::Message> Exchange(wire::Kind kind, std::string body, std::int32_t timeoutMs, bool pump);
    void WaitFor(const PendingPtr& pending, std::int32_t timeoutMs, bool pump);
    void ReadAnswers(std::shared_ptr<wire::Channel> channel, pid_t pid);
    void Take(wire::Message message);
    void TakeLevel(std::int32_t level);
    void TakeDeviceChange(wire::DeviceChange change);
    void GiveUp();

    const std::string m_program;
    host::IEventLoop& m_loop;
    std::atomic<bool> m_isAlive{false};
    std::int32_t m_generation = 0;
    std::uint32_t m_nextId = 1;
    wire::Failure m_lastFailure;
    std::shared_ptr<wire::Channel> m_channel;
    std::thread m_reader;

    std::mutex m_mutex;
    std::condition_variable m_answered;
    std::map<std::uint32_t, PendingPtr> m_pending;

    /// A number that changes often, passed on as fast as the loop takes it. Shared with tasks that may still wait in
    /// the loop when the link goes.
    struct NumberSink {
        std::function<void(std::int32_t)> call;
        std::atomic<bool> isPosted{false};
        std::atomic<std::int32_t> value{0};
    };
    using NumberSinkPtr = std::shared_ptr<NumberSink>;
    void PassOn(const NumberSinkPtr& sink, std::int32_t value);

    struct DeviceSink {
        std::function<void(const wire::DeviceChange&)> call;
    };
    std::shared_ptr<DeviceSink> m_deviceSink = std::make_shared<DeviceSink>();

    NumberSinkPtr m_levelSink = std::make_shared<NumberSink>();
    NumberSinkPtr m_progressSink = std::make_shared<NumberSink>();
    std::atomic<std::int32_t> m_level{0};
};

}  // namespace kestrum::adapters
