// What keeps a recording from starting, as a kind to decide by and a sentence to show.
#pragma once

#include <stdexcept>
#include <string>

namespace kestrum::media {

enum class CaptureErrorKind {
    kNoDisplay,     ///< the display cannot be opened, or lacks what a recording needs
    kBadArea,       ///< the rectangle is empty, odd or partly off the screen
    kNoSound,       ///< the sound server does not answer, or the source is not there
    kEncoder,       ///< an encoder refused its settings
    kCannotAppend,  ///< the package holds tracks that a recording cannot go on with
    kNoCamera       ///< the camera is not there, or cannot be read
};

class CaptureError : public std::runtime_error {
  public:
    CaptureError(CaptureErrorKind errorKind, const std::string& sentence)
        : std::runtime_error(sentence), kind(errorKind) {}

    const CaptureErrorKind kind;
};

}  // namespace kestrum::media
