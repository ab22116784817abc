// Messages over a connected stream socket: length, kind, id, body. Decides nothing about their meaning.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

#include "media/protocol/Messages.h"
#include "media/protocol/Wire.h"

namespace kestrum::media::protocol {

struct Message {
    Kind kind = Kind::kDone;
    std::uint32_t id = 0;  ///< 0 for events that belong to no request
    std::string body;
};

class Channel {
  public:
    /// Owns the socket.
    explicit Channel(int fd);
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    int FileDescriptor() const { return m_fd; }
    /// Sends one message whole; any thread. False if the other side has gone or took nothing for 10 s.
    bool Send(const Message& message);
    /// Sends it only if there is room now: for events that are worthless when late.
    void SendIfRoom(const Message& message);
    /// Waits for the next message; one thread. Empty when the other side has gone, or sent what is no message.
    std::optional<Message> Receive();
    /// Ends a Receive of another thread, and all that comes after it.
    void Shutdown();

    template <typename T>
    static Message Make(Kind kind, std::uint32_t id, const T& body) {
        return {kind, id, Pack(body)};
    }

  private:
    bool WriteAll(const std::string& bytes);
    bool ReadAll(char* target, std::size_t size);

    const int m_fd;
    std::mutex m_sendMutex;
};

}  // namespace kestrum::media::protocol
