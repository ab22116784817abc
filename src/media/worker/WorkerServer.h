// The worker as the other end of a channel: takes requests, answers them, and ends when the other side has gone.
// Decides that no end loses a recording: neither the death of the program that started it nor a request of the system
// to end.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "media/protocol/Channel.h"
#include "media/worker/CastDesk.h"
#include "media/worker/DeviceDesk.h"
#include "media/worker/RecordingDesk.h"
#include "media/worker/VerifyJob.h"

namespace kestrum::media {

class WorkerServer {
  public:
    /// Owns the connected socket.
    explicit WorkerServer(int socket);

    /// Serves until the other side has gone or the system asked for the end (SIGTERM, which the caller has blocked in
    /// all threads). Returns the exit code.
    int Run();

  private:
    /// Body of a request in, body of its answer out.
    using Handler = std::function<std::string(const std::string&)>;

    template <typename Request, typename Function>
    void On(protocol::Kind kind, Function function);
    void AddRecordingHandlers();
    void AddDeviceHandlers();
    void AddPackageHandlers();
    void SendLevel(int level);
    void SendDeviceChange(const DeviceChange& change);
    void Answer(const protocol::Message& request);
    /// Answers when `work` has its answer, on a thread of its own; `work` tells its progress meanwhile.
    template <typename Request, typename Function>
    void StartLong(const protocol::Message& request, Function work);
    bool WaitForWork(int signalFd);
    void OnTerminate(int signalFd);

    protocol::Channel m_channel;
    CastDesk m_casts;
    RecordingDesk m_desk;
    DeviceDesk m_devices;
    VerifyJob m_verify;
    std::map<protocol::Kind, Handler> m_handlers;
    std::int64_t m_endNs = 0;  ///< when a worker that was asked to end stops answering; 0: not asked
};

}  // namespace kestrum::media
