// The one exception of the house: a failure of the host, of the system or of the rules' own run time.
// Adapters throw it, translated from HRESULT, UNO exception, errno or AVERROR; nothing else leaves an adapter.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "host/String.h"

namespace kestrum::host {

/// Numbers of the run-time failures that the rules themselves can raise.
enum class ErrorNumber : std::int32_t {
    Overflow = 6,
    OutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    FileNotFound = 53,
    FileAlreadyOpen = 55,
    DiskFull = 61,
    PermissionDenied = 70,
    PathNotFound = 76,
    ObjectNotSet = 91,
    Automation = 440,  ///< the office answered with an error, or is dead
    DuplicateKey = 457,
};

class Error : public std::exception {
  public:
    Error(ErrorNumber number, String source, String description);

    ErrorNumber Number() const { return m_number; }
    /// The call or statement that failed, for traces.
    const String& Source() const { return m_source; }
    /// One sentence for the user.
    const String& Description() const { return m_description; }
    const char* what() const noexcept override { return m_what.c_str(); }

  private:
    ErrorNumber m_number;
    String m_source;
    String m_description;
    std::string m_what;
};

}  // namespace kestrum::host
