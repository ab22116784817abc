// The parent's wish to end a job: the line "stop" on standard input, or its end if a parent holds the other side.
#pragma once

#include <string>

namespace kestrum::media {

class StopRequest {
  public:
    /// Watches `file`, a descriptor that this object never closes. What is neither pipe, socket nor terminal (such as
    /// /dev/null in batch use) is not watched.
    explicit StopRequest(int file);
    /// Never waits. Once true it stays true.
    bool Requested();

  private:
    void ReadWaiting();

    int m_file;
    bool m_watched;
    bool m_requested = false;
    std::string m_line;
};

}  // namespace kestrum::media
