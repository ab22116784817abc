// The platform's dialog in which a user picks a file.
#pragma once

#include <optional>

#include "host/String.h"

namespace kestrum::host {

struct FileQuestion {
    String title;
    /// What is offered, as "name|patterns", patterns separated by ";": "picture (*.jpg, *.png)|*.jpg;*.png".
    String filter;
    /// The folder shown first; the user's own if it is empty or missing.
    String folder;
};

class IFileDialog {
  public:
    virtual ~IFileDialog() = default;
    /// The full path of an existing file; none if the user picked none (re-enters).
    virtual std::optional<String> OpenFile(const FileQuestion& question) = 0;
};

}  // namespace kestrum::host
