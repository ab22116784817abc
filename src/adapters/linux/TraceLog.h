// The developer's trace: lines on standard error, only while KESTRUM_TRACE is set to something other than 0.
#pragma once

#include <mutex>

#include "host/ITrace.h"

namespace kestrum::platform {

class TraceLog : public host::ITrace {
  public:
    TraceLog();
    /// May be called from any thread.
    void Skipped(const host::Error& error) override;
    void Note(const String& line) override;

  private:
    void Write(const std::string& line);

    bool m_enabled;
    std::mutex m_mutex;
};

}  // namespace kestrum::platform
