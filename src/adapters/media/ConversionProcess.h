// A conversion in a process of its own: started, looked at, asked to stop. The process tells its position and its end
// in lines on standard output; a thread reads them. When this object goes, the process is asked to end and waited for.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kestrum::adapters {

class ConversionProcess {
  public:
    /// Starts `program`. Throws std::runtime_error if that fails.
    ConversionProcess(const std::string& program, const std::vector<std::string>& arguments);
    ~ConversionProcess();
    ConversionProcess(const ConversionProcess&) = delete;
    ConversionProcess& operator=(const ConversionProcess&) = delete;

    /// The last position in ms, or a negative host::job_status once it has ended. Never waits.
    std::int32_t Status() const { return m_status; }
    /// Asks for the end; the status tells when it has come. May be repeated.
    void Stop();

  private:
    void Spawn(const std::string& program, const std::vector<std::string>& arguments);
    void ReadLines();
    void TakeLine(const std::string& line);
    void Reap();
    bool WaitForEnd(int milliseconds);

    pid_t m_pid = -1;
    int m_control = -1;  ///< our end of the process's standard input
    int m_output = -1;
    std::atomic<std::int32_t> m_status{0};
    std::atomic<bool> m_reaped{false};
    std::int32_t m_end;  ///< what the process said of its end; of the reading thread
    std::mutex m_pidMutex;
    std::thread m_reader;
};

}  // namespace kestrum::adapters
