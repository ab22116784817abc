// Several descriptors as one that can be polled: it is readable while one of them is.
#pragma once

#include <sys/epoll.h>
#include <unistd.h>

namespace kestrum::media {

class PollSet {
  public:
    PollSet() : m_fd(epoll_create1(EPOLL_CLOEXEC)) {}
    ~PollSet() { close(m_fd); }
    PollSet(const PollSet&) = delete;
    PollSet& operator=(const PollSet&) = delete;

    int FileDescriptor() const { return m_fd; }
    /// `fd` stays the caller's and outlives the set.
    void Add(int fd) {
        epoll_event event{};
        event.events = EPOLLIN;
        epoll_ctl(m_fd, EPOLL_CTL_ADD, fd, &event);
    }

  private:
    const int m_fd;
};

}  // namespace kestrum::media
