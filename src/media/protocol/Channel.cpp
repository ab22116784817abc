#include "media/protocol/Channel.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace kestrum::media::protocol {
namespace {

constexpr std::size_t kHeaderSize = 10;
constexpr std::uint32_t kLargestBody = 64U << 20;
constexpr int kSendTimeoutMs = 10'000;

std::string Frame(const Message& message) {
    WireWriter header;
    header(static_cast<std::uint32_t>(message.body.size()));
    header(message.kind);
    header(message.id);
    return header.Take() + message.body;
}

bool HasRoom(int fd, int timeoutMs) {
    pollfd descriptor{fd, POLLOUT, 0};
    int result = 0;
    do {
        result = poll(&descriptor, 1, timeoutMs);
    } while (result < 0 && errno == EINTR);
    return result == 1 && (descriptor.revents & POLLOUT);
}

}  // namespace

Channel::Channel(int fd) : m_fd(fd) {}
Channel::~Channel() {
    close(m_fd);
}

bool Channel::Send(const Message& message) {
    const std::lock_guard lock(m_sendMutex);
    return WriteAll(Frame(message));
}

void Channel::SendIfRoom(const Message& message) {
    const std::unique_lock lock(m_sendMutex, std::try_to_lock);
    if (lock && HasRoom(m_fd, 0)) WriteAll(Frame(message));
}

bool Channel::WriteAll(const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t n = send(m_fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (errno == EAGAIN) {
            if (!HasRoom(m_fd, kSendTimeoutMs)) return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool Channel::ReadAll(char* target, std::size_t size) {
    for (std::size_t done = 0; done < size;) {
        const ssize_t n = recv(m_fd, target + done, size - done, 0);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

std::optional<Message> Channel::Receive() {
    char header[kHeaderSize];
    if (!ReadAll(header, sizeof header)) return std::nullopt;
    WireReader reader({header, sizeof header});
    std::uint32_t size = 0;
    Message message;
    reader(size);
    reader(message.kind);
    reader(message.id);
    if (size > kLargestBody) return std::nullopt;
    message.body.resize(size);
    if (!ReadAll(message.body.data(), size)) return std::nullopt;
    return message;
}

void Channel::Shutdown() {
    shutdown(m_fd, SHUT_RDWR);
}

}  // namespace kestrum::media::protocol
