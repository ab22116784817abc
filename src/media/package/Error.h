// The one exception of the package library: what went wrong, as a kind to decide by and a sentence to show.
#pragma once

#include <stdexcept>
#include <string>

namespace kestrum::media {

enum class ErrorKind {
    kMissing,       ///< the file or its folder does not exist: name another one
    kNoPermission,  ///< the file or its folder may not be read or written
    kDiskFull,      ///< no space left; what reached the file before is safe
    kLocked,        ///< a living recorder holds the package: wait for its end
    kNotAPackage,   ///< readable, but not one of ours; nothing was changed
    kDamaged,       ///< one of ours, but not readable where it matters; nothing was changed
    kBadCall,       ///< the caller broke the order of calls or a limit
    kIo,            ///< any other failure of the system
};

class Error : public std::runtime_error {
  public:
    Error(ErrorKind errorKind, const std::string& sentence, int errorNumber)
        : std::runtime_error(sentence), kind(errorKind), systemError(errorNumber) {}

    const ErrorKind kind;
    const int systemError;  ///< errno, 0 if the system had no part in it
};

}  // namespace kestrum::media
