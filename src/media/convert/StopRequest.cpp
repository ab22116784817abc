#include "media/convert/StopRequest.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace kestrum::media {

namespace {

bool HasOtherSide(int file) {
    struct stat status = {};
    if (fstat(file, &status) != 0) return false;
    return S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) || isatty(file) == 1;
}

}  // namespace

StopRequest::StopRequest(int file) : m_file(file), m_watched(HasOtherSide(file)) {}

bool StopRequest::Requested() {
    while (m_watched && !m_requested) {
        pollfd waiting{m_file, POLLIN, 0};
        if (poll(&waiting, 1, 0) <= 0) break;
        ReadWaiting();
    }
    return m_requested;
}

void StopRequest::ReadWaiting() {
    char buffer[256];
    const ssize_t count = read(m_file, buffer, sizeof buffer);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) {
        m_requested = true;  // the parent is gone
        return;
    }
    for (ssize_t i = 0; i < count; ++i) {
        if (buffer[i] != '\n') {
            m_line += buffer[i];
            continue;
        }
        m_requested = m_requested || m_line == "stop";
        m_line.clear();
    }
}

}  // namespace kestrum::media
