// The word by which the desktop knows that it has been allowed before, so that its user is asked once. It holds for one
// recording and is exchanged for a new one each time. A file of the user's state folder that nobody else can read.
#pragma once

#include <string>

namespace kestrum::media {

class TokenFile {
  public:
    /// The file of this user: kestrum/screen-cast below XDG_STATE_HOME, or ~/.local/state where that is not set.
    TokenFile();

    /// Empty if there is none.
    std::string Read() const;
    /// An empty text removes the file. What cannot be kept is not: then the user is asked again.
    void Write(const std::string& token) const;

  private:
    std::string m_path;
};

}  // namespace kestrum::media
